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

/// A planned change: the bytes of `range` become `replacement`. All other bytes stay.
struct ZDKASTOperationResult {
  ByteRange range;
  std::string replacement;
};

/// A hashtag as it stands in a text.
struct HashtagMention {
  ByteRange range;   ///< from its "#" to its end, a closing mark included
  std::string name;  ///< canonical
};

/// A link or image whose destination is a local file name: it has no scheme and no slash.
struct FileLink {
  ByteRange range;       ///< the whole link, the comment with its preview flag included
  std::string filename;  ///< percent-decoded, without a fragment ("#page=2")
  bool isImage = false;
};

/// What a note's text holds, in the order of its text.
struct ZDKTextSummary {
  std::string title;  ///< of the first heading, else the first line that is not empty; plain text
  std::vector<std::string> tags;       ///< names, each once, in order of first mention
  std::vector<FileLink> files;         ///< every mention
  std::vector<std::string> wikiLinks;  ///< titles named by [[wiki links]], each once
  std::int32_t todoIncomplete = 0;     ///< open task list items
  std::int32_t todoCompleted = 0;      ///< finished task list items
  bool hasImages = false;              ///< any image, local or remote
  bool hasCode = false;                ///< a code span or block
};

struct Document;

/// A parsed Markdown text: CommonMark 0.30 with tables, task lists, strikethrough, wiki links and
/// hashtags. Reading and writing back any text is the identity, byte for byte; an operation is
/// planned first and changes only the bytes of its ranges. The rules stand in docs/markdown.md.
///
/// The text is parsed once, when it is first asked about. A `selection` is where the user's cursor
/// is in an editor; the empty range at 0 means the whole note, and so does every other one.
class ZDKAST {
 public:
  /// Any bytes are a Markdown text, so this always gives a tree.
  static ZDKAST fromMarkdown(std::string text);
  /// The tree of a text that outlives it, and is not copied.
  static ZDKAST viewing(std::string_view text);

  /// A link to a file: the label escaped, the URL percent-encoded where Markdown needs it, and for
  /// `preview` the comment that asks the application to show the file in place.
  static std::string markdownFile(std::string_view label, std::string_view url, bool preview);
  static std::string markdownImage(std::string_view label, std::string_view url,
                                   std::string_view title);

  /// Inserts `text` at the note's end, before bottom-placed tags and footnote definitions.
  std::vector<ZDKASTOperationResult> appendText(std::string_view text,
                                                ByteRange selection = {}) const;
  /// Inserts `text` at the beginning, after the title and top-placed tags.
  std::vector<ZDKASTOperationResult> prependText(std::string_view text,
                                                 ByteRange selection = {}) const;
  /// Removes every link and image whose file name is `url` (as the name is, not encoded).
  std::vector<ZDKASTOperationResult> removeLinkWithURL(std::string_view url,
                                                       ByteRange selection = {}) const;
  /// The same for each file name that `goes` accepts.
  std::vector<ZDKASTOperationResult> removeLinks(
      const std::function<bool(std::string_view filename)>& goes) const;

  /// Writes the hashtag where tags are placed: under the title, or as (or onto) the last line.
  std::vector<ZDKASTOperationResult> addHashtag(std::string_view name, bool bottom) const;
  /// Removes every mention of exactly this tag; children stay. A line that held nothing else goes.
  std::vector<ZDKASTOperationResult> removeHashtag(std::string_view name) const;
  /// Rewrites every mention of the tag and of its children; `work/a` becomes `job/a`. A tag line
  /// on which the new name would then stand twice keeps one.
  std::vector<ZDKASTOperationResult> renameHashtag(std::string_view from,
                                                   std::string_view to) const;

  /// Applies results planned on this very tree. Ranges must not overlap.
  void applyTextOperationResults(const std::vector<ZDKASTOperationResult>& results);

  const std::string& markdown() const;
  ZDKTextSummary textSummary() const;
  /// Every hashtag that stands in the text, in order.
  std::vector<HashtagMention> hashtags() const;

 private:
  ZDKAST() = default;
  std::string_view source() const { return owned_ ? std::string_view(*owned_) : viewed_; }
  const Document& document() const;

  mutable std::optional<std::string> owned_;  // absent: the text is somebody else's
  std::string_view viewed_;
  mutable std::shared_ptr<const Document> document_;  // of the text; absent until it is needed
};

/// What the text holds: the same as that of its tree, without a copy of the text.
ZDKTextSummary textSummary(std::string_view text);

}  // namespace zephyrdown
