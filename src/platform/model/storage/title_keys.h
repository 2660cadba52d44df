#pragma once

#include <string_view>

namespace tavimodel {

/// How the notes with a title are found, ignoring case, in SQL over `noteSummary s`. Parameter ?1
/// is the title as platform::text::foldedForSearch returns it.
///
/// Most titles differ from their folded form only in the case of ASCII letters. An index that
/// SQLite maintains itself finds those, whoever wrote them. The others are found by `titleKey`, the
/// folded title, which is NULL for the former.
struct TitleSQL {
  /// Whether the note has the title, unless `keyUnknown`.
  static constexpr std::string_view matches = "(s.title = ?1 COLLATE NOCASE OR s.titleKey = ?1)";
  /// The title may need a key, and it is not stored yet. A text has as many bytes as characters if
  /// it is ASCII.
  static constexpr std::string_view keyUnknown =
      "(s.searchRow IS NULL AND s.titleKey IS NULL AND "
      "(typeof(s.title) <> 'text' OR length(CAST(s.title AS BLOB)) <> length(s.title)))";
};

}  // namespace tavimodel
