#include "platform/model/objects/tag_renaming.h"

#include <memory>
#include <unordered_set>

#include "platform/markdown/ast.h"
#include "platform/markdown/hashtag.h"
#include "platform/markdown/operations.h"
#include "platform/model/objects/large_text.h"
#include "platform/text/folding.h"

namespace tavimodel {

using platform::text::foldedForSearch;
using zephyrdown::ZDKAST;
using zephyrdown::ZDKHashtag;

std::string TagRenaming::renamed(const std::string& name) const {
  return ZDKHashtag::renamedTagName(name, tag_, newName_).value_or(name);
}

/// The new text of a note whose tag rows are `rows`; absent if there is nothing to rename. Tags
/// that only the rows have are added to the text.
std::optional<TagRenaming::Renamed> TagRenaming::renamedText(const std::string& text,
                                                             const Names& rows) const {
  const ZDKAST tree = ZDKAST::viewing(text);
  Names missing;
  for (const std::string& name : rows) {
    const bool isConcerned = ZDKHashtag::isTagOrDescendant(name, tag_);
    if (isConcerned && !tree.hasHashtag(name)) missing.push_back(name);
  }
  const auto operations = tree.renameHashtag(tag_, newName_);
  if (operations.empty() && missing.empty()) return std::nullopt;
  Renamed result{zephyrdown::withOperations(text, operations), std::nullopt};
  if (missing.empty()) result.summary = tree.summaryAfterRenaming(operations, tag_, newName_);
  for (const std::string& name : missing) {
    const auto addition = ZDKAST::viewing(result.text).addHashtag(renamed(name), bottom_);
    result.text = zephyrdown::withOperations(result.text, addition);
  }
  return result;
}

NoteChange TagRenaming::ofNote(KVNote& note) const {
  if (note.encryptedValue()) return {nullptr, [this, &note] { renameRows(note); }};
  struct Plan {
    std::optional<std::string> text;
    std::optional<TextReading> reading;
    std::optional<TrigramChange> trigrams;
  };
  const auto plan = std::make_shared<Plan>();
  const std::string& text = note.text();
  const Names& rows = note.tagsStrings();
  const auto planned =
      [this, plan, &text, &rows, title = note.title().value_or(""),
       indexedDigest = note.isIndexed() && note.knownFacts() ? note.knownFacts()->digest : ""] {
        auto renamed = renamedText(text, rows);
        if (!renamed) return;
        plan->text = std::move(renamed->text);
        // A large text is read after the old one has been freed.
        const bool isLarge = static_cast<std::int64_t>(text.size()) >= largeText;
        if (isLarge) return;
        plan->reading = renamed->summary
                            ? TextReading::of(*plan->text, std::move(*renamed->summary))
                            : TextReading::of(*plan->text);
        if (indexedDigest.empty()) return;
        // A program that has turned triggers off may have changed the text unnoticed by the index.
        if (indexedDigest != TextFacts::digestOf(text)) return;
        plan->trigrams = TrigramChange::between(foldedForSearch(text), foldedForSearch(*plan->text),
                                                foldedForSearch(title));
      };
  return {planned,
          [plan, &note] {
            if (!plan->text) return;
            if (plan->reading) {
              note.updateNoteWithText(std::move(*plan->text), std::move(*plan->reading));
            } else {
              note.updateNoteWithText(std::move(*plan->text), false);
            }
          },
          {plan, &plan->trigrams}};
}

void TagRenaming::renameRows(KVNote& note) const {
  Names names;
  std::unordered_set<std::string> known;
  for (const std::string& name : note.tagsStrings()) {
    std::string now = renamed(name);
    if (known.insert(now).second) names.push_back(std::move(now));
  }
  note.setTagsStrings(std::move(names));
}

void TagRenaming::movePins(KVNote& note) const {
  const Names pins = note.pinnedInTags();
  for (const std::string& pin : pins) {
    const std::string now = renamed(pin);
    if (now == pin) continue;
    note.unpinInTag(pin);
    note.pinInTag(now);
  }
}

}  // namespace tavimodel
