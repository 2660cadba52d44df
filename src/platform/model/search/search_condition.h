#pragma once

#include <optional>
#include <string>

namespace tavimodel {

/// One thing asked of a note. What each kind means stands in condition_kinds.h.
struct SearchCondition {
  enum class Kind {
    term,  ///< `text` is in the note
    tag,
    exactTag,
    subtag,
    modified,
    created,
    todo,
    done,
    task,
    tagged,
    untagged,
    pinned,
    images,
    files,
    attachments,
    code,
    locked,
    readOnly,
    empty,
    untitled,
    wikiLinks,
    backlinks,
    ocr,
  };

  Kind kind = Kind::term;
  bool negated = false;
  std::string text;            ///< of a term as it was written, of a tag its canonical name
  std::optional<double> from;  ///< seconds since 1970-01-01 UTC, inclusive; absent: any
  std::optional<double> to;    ///< exclusive
};

}  // namespace tavimodel
