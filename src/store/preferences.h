#pragma once

namespace tavi {

/// The application's preferences that concern this program. Each call reads them afresh.
struct TaviPreferences {
  static bool isApplicationLockEnabled();
  /// Where new tags go: the bottom of a note, unless the application is set to the top.
  static bool tagsAtBottom();
};

}  // namespace tavi
