#pragma once

namespace tavi {

/// The preferences of the application that matter to this program. Each call reads the files again;
/// a missing or unreadable file gives the default.
struct TaviPreferences {
  static bool isApplicationLockEnabled();  ///< default: false
  /// Whether new tags go to the bottom of a note rather than below its title. Default: true.
  static bool tagsAtBottom();
};

}  // namespace tavi
