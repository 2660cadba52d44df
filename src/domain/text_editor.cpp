#include "domain/text_editor.h"

#include <cstdint>

#include "domain/store_errors.h"
#include "platform/text/characters.h"
#include "platform/text/regular_expression.h"
#include "platform/text/string_search.h"
#include "platform/text/utf8.h"

namespace tavi {
namespace {

using platform::text::ByteRange;
using platform::text::CaseFolding;
using platform::text::RegularExpression;
using platform::text::StringSearch;

/// Bounds the cost of plainWordMatches: a crafted text can force a full comparison of the word at
/// each of its bytes.
constexpr std::size_t kLongestPlainWord = 64;

std::vector<ByteRange> literalMatches(const EditOperation& edit, std::string_view text) {
  const CaseFolding folding = edit.ignoreCase ? CaseFolding::full : CaseFolding::none;
  return StringSearch(edit.find, folding).findAll(text);
}

bool isWordScalar(char32_t scalar) {
  return scalar == '_' || platform::text::isAlphanumeric(scalar);
}

/// The word search for an ASCII text and word, in which a match is a whole word if no word
/// character is next to it. Avoids loading the regular expressions, which takes a millisecond, and
/// most of the search time.
std::vector<ByteRange> plainWordMatches(const EditOperation& edit, std::string_view text) {
  const auto isWordAt = [text](std::size_t position) {
    return position < text.size() && isWordScalar(static_cast<unsigned char>(text[position]));
  };
  const CaseFolding folding = edit.ignoreCase ? CaseFolding::full : CaseFolding::none;
  const StringSearch search(edit.find, folding);
  std::vector<ByteRange> result;
  for (auto match = search.find(text); match.has_value();) {
    const bool isPart = (match->begin > 0 && isWordAt(match->begin - 1)) || isWordAt(match->end);
    if (!isPart) result.push_back(*match);
    match = search.find(text, isPart ? match->begin + 1 : match->end);
  }
  return result;
}

/// The matches of `edit.find` as a whole word. "\b" does not work at an end that is not a word
/// character, as in "#tag" or "x++": there it would require a word character outside the match.
std::vector<ByteRange> wordMatches(const EditOperation& edit, std::string_view text) {
  const std::string_view find = edit.find;
  if (find.empty()) return {};  // would match between any two words
  if (find.size() <= kLongestPlainWord && platform::text::isASCII(find) &&
      platform::text::isASCII(text)) {
    return plainWordMatches(edit, text);
  }
  const std::size_t last = platform::text::previousScalar(find, find.size());
  const bool beginsAsWord = isWordScalar(platform::text::decodeScalar(find, 0).value);
  const bool endsAsWord = isWordScalar(platform::text::decodeScalar(find, last).value);
  const std::string pattern = std::string(beginsAsWord ? R"(\b)" : R"((?:(?<=\W)|(?<=\A)))") +
                              RegularExpression::escapedPattern(find) +
                              (endsAsWord ? R"(\b)" : R"((?:(?=\W)|(?=\Z)))");
  return RegularExpression(pattern, edit.ignoreCase).matches(text);
}

/// Applies the action at each range; the ranges are ascending and do not overlap.
std::string applied(const EditAction& action, const std::vector<ByteRange>& ranges,
                    std::string_view text) {
  std::string result;
  result.reserve(text.size() + ranges.size() * action.text.size());
  std::size_t copied = 0;
  for (const ByteRange& range : ranges) {
    const bool isBefore = action.kind == EditAction::Kind::insertBefore;
    const std::size_t keptUntil =
        action.kind == EditAction::Kind::insertAfter ? range.end : range.begin;
    result += text.substr(copied, keptUntil - copied);
    result += action.text;
    copied = isBefore ? range.begin : range.end;
  }
  result += text.substr(copied);
  return result;
}

}  // namespace

std::string TextEditor::applyEdit(const EditOperation& edit, std::string_view text,
                                  std::string_view noteID) {
  const std::vector<ByteRange> ranges =
      edit.word ? wordMatches(edit, text) : literalMatches(edit, text);
  if (ranges.empty()) throw NoteStoreError::stringNotFound(noteID);
  if (ranges.size() > 1 && !edit.all) {
    throw NoteStoreError::stringMatchesMultiple(noteID, static_cast<std::int64_t>(ranges.size()));
  }
  return applied(edit.action, ranges, text);
}

std::string TextEditor::applyEdits(const std::vector<EditOperation>& edits, std::string_view text,
                                   std::string_view noteID) {
  if (edits.empty()) return std::string(text);
  std::string result;
  for (std::size_t i = 0; i < edits.size(); ++i) {
    try {
      result = applyEdit(edits[i], text, noteID);
      text = result;
    } catch (const NoteStoreError& error) {
      throw NoteStoreError::batchEditFailed(static_cast<std::int64_t>(i), edits[i].find, error);
    }
  }
  return result;
}

}  // namespace tavi
