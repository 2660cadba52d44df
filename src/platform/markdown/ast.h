#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/utf8.h"

namespace zephyrdown {

using platform::text::ByteRange;

/// A planned edit, which replaces the bytes of `range`. All other bytes stay.
struct ZDKASTOperationResult {
  ByteRange range;
  std::string replacement;
};

/// An occurrence of a hashtag in a text.
struct HashtagMention {
  ByteRange range;   ///< from its "#" to its end, including a closing mark
  std::string name;  ///< canonical
};

/// A link or image whose destination is a local file name: it has no scheme and no slash.
struct FileLink {
  ByteRange range;       ///< the whole link, including the comment with its preview flag
  std::string filename;  ///< percent-decoded, without a fragment ("#page=2")
  bool isImage = false;

  bool operator==(const FileLink&) const = default;
};

/// The contents of a note's text that are stored beside it, in text order.
struct ZDKTextSummary {
  std::string title;  ///< of the first heading, else the first line that is not empty; plain text
  std::vector<std::string>
      tags;  ///< canonical names without duplicates, in order of first occurrence
  std::vector<FileLink> files;         ///< every occurrence
  std::vector<std::string> wikiLinks;  ///< titles in [[wiki links]], without duplicates
  std::int32_t todoIncomplete = 0;     ///< open task list items
  std::int32_t todoCompleted = 0;      ///< finished task list items
  bool hasImages = false;              ///< any image, local or remote
  bool hasCode = false;                ///< a code span or block

  bool operator==(const ZDKTextSummary&) const = default;
};

struct Document;

/// A parsed Markdown text: CommonMark 0.30 with tables, task lists, strikethrough, wiki links and
/// hashtags (docs/markdown.md has the rules). Parsing loses no byte of the text. Editing functions
/// return planned edits, which change only the bytes of their ranges.
///
/// The text is parsed once, on first use. A `selection` is the user's cursor in an editor; it is
/// ignored, and every operation applies to the whole note.
class ZDKAST {
 public:
  /// Never fails, since any bytes are a Markdown text.
  static ZDKAST fromMarkdown(std::string text);
  /// A tree of a text that is not copied and must outlive it.
  static ZDKAST viewing(std::string_view text);

  /// Writes a link to a file. Escapes the label, percent-encodes the URL where Markdown requires
  /// it, and for `preview` adds the comment that makes the application show the file inline.
  static std::string markdownFile(std::string_view label, std::string_view url, bool preview);
  /// Writes an image, with the same encoding. No title if `title` is empty.
  static std::string markdownImage(std::string_view label, std::string_view url,
                                   std::string_view title);

  /// Plans to insert `text` at the note's end, before bottom-placed tags and footnote definitions.
  std::vector<ZDKASTOperationResult> appendText(std::string_view text,
                                                ByteRange selection = {}) const;
  /// Plans to insert `text` at the beginning, after the title and top-placed tags.
  std::vector<ZDKASTOperationResult> prependText(std::string_view text,
                                                 ByteRange selection = {}) const;
  /// Plans to remove every link and image whose file name is `url`, which is not percent-encoded.
  std::vector<ZDKASTOperationResult> removeLinkWithURL(std::string_view url,
                                                       ByteRange selection = {}) const;
  /// Plans to remove every link and image for whose file name `shouldRemove` returns true.
  std::vector<ZDKASTOperationResult> removeLinks(
      const std::function<bool(std::string_view filename)>& shouldRemove) const;

  /// Plans to add the hashtag below the title or, if `bottom`, to the last line or as a new one.
  std::vector<ZDKASTOperationResult> addHashtag(std::string_view name, bool bottom) const;
  /// Plans to remove every occurrence of exactly this tag; descendants stay. A line that has
  /// nothing else is removed.
  std::vector<ZDKASTOperationResult> removeHashtag(std::string_view name) const;
  /// Plans to rename every occurrence of the tag and its descendants; `work/a` becomes `job/a`. If
  /// a tag line would then have the new name twice, one is removed.
  std::vector<ZDKASTOperationResult> renameHashtag(std::string_view from,
                                                   std::string_view to) const;

  /// The summary of the text after `renaming`, edits planned by `renameHashtag`, if it is certain
  /// without parsing that text, as it is for most.
  std::optional<ZDKTextSummary> summaryAfterRenaming(
      const std::vector<ZDKASTOperationResult>& renaming, std::string_view from,
      std::string_view to) const;

  /// Applies edits planned on this tree. Their ranges must not overlap.
  void applyTextOperationResults(const std::vector<ZDKASTOperationResult>& results);

  const std::string& markdown() const;
  ZDKTextSummary textSummary() const;
  /// Every occurrence of a hashtag, in text order.
  std::vector<HashtagMention> hashtags() const;
  bool hasHashtag(std::string_view name) const;

 private:
  ZDKAST() = default;
  std::string_view source() const { return owned_ ? std::string_view(*owned_) : viewed_; }
  const Document& document() const;

  mutable std::optional<std::string> owned_;  // absent: the text belongs to the caller
  std::string_view viewed_;
  mutable std::shared_ptr<const Document> document_;  // null until first used
};

/// Like ZDKAST::textSummary, without a copy of the text.
ZDKTextSummary textSummary(std::string_view text);

}  // namespace zephyrdown
