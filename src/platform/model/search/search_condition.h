#pragma once

#include <optional>
#include <string>

namespace tavimodel {

/// One condition of a query. condition_kinds.h says what each kind means.
struct SearchCondition {
  /// What the condition tests, in the order of conditionKinds.
  enum class Kind {
    term,  ///< the note contains `text`
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
  std::string text;            ///< a term as written, or the canonical name of a tag
  std::optional<double> from;  ///< seconds since 1970-01-01 UTC, inclusive; absent: no limit
  std::optional<double> to;    ///< likewise, but exclusive
};

}  // namespace tavimodel
