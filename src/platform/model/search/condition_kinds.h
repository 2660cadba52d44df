#pragma once

#include <array>
#include <string_view>

#include "platform/model/search/search_condition.h"
#include "platform/model/storage/text_facts.h"

namespace tavimodel {

/// Describes one kind of search condition. A new directive is a new row of the table below.
struct ConditionKind {
  /// How the notes that satisfy the condition can be looked up.
  enum class Index {
    none,      ///< not at all: `sql` is tested note by note
    byPlace,   ///< `sql` tests a column that an index has after the location
    ofFew,     ///< `sql` is a term of the partial index `summaryOfFew`
    relation,  ///< `sql` selects the notes themselves, possibly with duplicates
    ids,       ///< the same, without duplicates
  };
  /// What has to be prepared before `sql` can run.
  enum class Needs {
    nothing,
    facts,       ///< text facts, see missing_facts.h
    imageNames,  ///< the SQL function isImageName
    backlinks,   ///< the notes that others link to, bound as `:text`
  };

  SearchCondition::Kind kind;
  std::string_view
      directive;           ///< the word after "@"; empty if queries write the condition differently
  std::string_view finds;  ///< which notes the directive finds, for help pages
  /// A test on the columns of `noteSummary s` (NULL is false), or for a relation or ids a SELECT
  /// of `note`. ":text", ":from" and ":to" stand for the condition's values, ":tree" for a test of
  /// `tag.title`.
  std::string_view sql;
  Index index = Index::none;
  Needs needs = Needs::nothing;
  /// The condition reveals content of the note, so it never holds for a locked one.
  bool isSecret = false;
};

/// In the order of SearchCondition::Kind.
inline constexpr std::array conditionKinds = [] {
  using enum SearchCondition::Kind;
  using enum ConditionKind::Index;
  using Needs = ConditionKind::Needs;
  constexpr bool secret = true;
  return std::to_array<ConditionKind>({
      {term, "", "", ""},
      {tag, "", "", "SELECT note FROM noteTag WHERE tag IN (SELECT id FROM tag WHERE :tree)",
       relation},
      {exactTag, "", "",
       "SELECT note FROM noteTag WHERE tag IN (SELECT id FROM tag WHERE title = :text)", relation},
      {subtag, "", "",
       "SELECT note FROM noteTag WHERE tag IN (SELECT id FROM tag WHERE title <> :text "
       "AND instr('/' || title || '/', '/' || :text || '/') > 0)",
       relation},
      {modified, "", "", "modificationDate >= :from AND modificationDate < :to", byPlace},
      {created, "", "", "creationDate >= :from AND creationDate < :to", byPlace},
      {todo, "todo", "with open to-dos", "todoIncomplete > 0", none, Needs::facts, secret},
      {done, "done", "with to-dos, all finished", "todoIncomplete = 0 AND todoCompleted > 0", none,
       Needs::facts, secret},
      {task, "task", "with to-dos", "todoIncomplete + todoCompleted > 0", none, Needs::facts,
       secret},
      {tagged, "tagged", "with tags", "EXISTS (SELECT 1 FROM noteTag t WHERE t.note = s.note)"},
      {untagged, "untagged", "without tags",
       "NOT EXISTS (SELECT 1 FROM noteTag t WHERE t.note = s.note)"},
      {pinned, "pinned", "pinned in All Notes", "pinned = 1", byPlace},
      {images, "images", "whose text has an image", FeatureSQL::images, none, Needs::facts, secret},
      {files, "files", "with attached files that are no images",
       "SELECT note FROM file WHERE NOT isImageName(filename)", relation, Needs::imageNames,
       secret},
      {attachments, "attachments", "with attached files", "SELECT note FROM file", relation,
       Needs::nothing, secret},
      {code, "code", "whose text has a code span or a code block", FeatureSQL::code, none,
       Needs::facts, secret},
      {locked, "locked", "that are locked", "encrypted = 1", ofFew},
      {readOnly, "readonly", "that are read-only", "readOnly = 1", ofFew},
      {empty, "empty", "without text but white space", FeatureSQL::blank, ofFew, Needs::facts,
       secret},
      {untitled, "untitled", "without a title", "ifnull(title, '') = ''", ofFew},
      {wikiLinks, "wikilinks", "that link to a note", FeatureSQL::wikiLinks, none, Needs::facts,
       secret},
      {backlinks, "backlinks", "that another note links to",
       "SELECT value AS note FROM json_each(:text)", ids, Needs::backlinks},
      {ocr, "ocr",
       "with attachments whose text was recognised; terms are looked for in that text only",
       "SELECT note FROM file WHERE ifnull(ocrText, '') <> ''", relation, Needs::nothing, secret},
  });
}();

constexpr const ConditionKind& kindOf(const SearchCondition& condition) {
  return conditionKinds[static_cast<std::size_t>(condition.kind)];
}

}  // namespace tavimodel
