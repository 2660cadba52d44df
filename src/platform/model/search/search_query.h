#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tavimodel {

/// A query that cannot mean anything; what() is a sentence for the user.
class SearchSyntaxError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// One thing asked of a note.
struct SearchCondition {
  enum class Kind {
    term,      ///< `text` stands in the note
    tag,       ///< carries the tag `text` or a child of it
    exactTag,  ///< carries the tag `text` itself
    subtag,    ///< carries a nested tag with `text` in its path, not `text` itself
    modified,  ///< changed from `from` on and before `to`
    created,   ///< the same of its making
    todo,      ///< has open to-dos
    done,      ///< has to-dos, all finished
    task,      ///< has to-dos
    tagged,
    untagged,
    pinned,  ///< in All Notes
    images,
    files,        ///< attached files that are no images
    attachments,  ///< attached files of any kind
    code,
    locked,
    readOnly,
    empty,  ///< no text but white space
    untitled,
    wikiLinks,  ///< links to other notes
    backlinks,  ///< is linked to by another note
    ocr,        ///< has attachments with recognised text
  };

  Kind kind = Kind::term;
  bool negated = false;
  std::string text;            ///< of a term as it was written, of a tag its canonical name
  std::optional<double> from;  ///< seconds since 1970-01-01 UTC, inclusive
  std::optional<double> to;    ///< exclusive
};

/// A parsed query: every group must hold, and a group holds when one of its conditions does.
struct SearchQuery {
  std::vector<std::vector<SearchCondition>> groups;
  bool titlesOnly = false;  ///< @title: terms are looked for in titles
  bool ocrOnly = false;     ///< @ocr: terms are looked for in the recognised text of attachments
};

/// Reads the search language (docs/search.md). Days are those of the local time zone; `now` is in
/// seconds since 1970-01-01 UTC. Throws SearchSyntaxError for a directive that there is none of.
SearchQuery parseSearchQuery(std::string_view text, double now);

}  // namespace tavimodel
