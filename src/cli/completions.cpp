#include "cli/completions.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "cli/session.h"
#include "domain/tag_parser.h"
#include "operations/attachment_operations.h"
#include "operations/comma_list.h"
#include "operations/pin_operations.h"
#include "operations/tag_operations.h"

namespace tavi::completions {
namespace {

constexpr std::string_view global = "global";  // the pin; a tag of that name is "#global"

NoteStore& storeForReading() {
  return openStore({.onlyReads = true});
}

/// A text of each note, the latest note first. bash looks at candidates one by one, and slowly: it
/// gets those alone that it would offer. Other shells match in ways of their own.
Candidates ofNotes(std::string NoteMetadata::*text, std::optional<NoteLocation> location,
                   const CompletionRequest& request) {
  const bool isExact = request.shell == "bash";
  const ListRequest notes{.sort = {{SortField::modified}}, .location = location, .detailed = false};
  Candidates candidates;
  storeForReading().listNotes(notes)->forEach([&](const NoteMetadata& note) {
    if (!isExact || (note.*text).starts_with(request.value)) candidates.push_back(note.*text);
  });
  return candidates;
}

Candidates asTyped(Candidates names, const CompletionRequest& request) {
  if (!request.value.starts_with('#')) return names;
  for (std::string& name : names) name = TagParser::writtenForm(name).value_or(name);
  return names;
}

/// What stands before the last piece of a list: "modified, " of "modified, ti".
std::string_view piecesBefore(std::string_view list) {
  const std::size_t afterComma = list.rfind(',') + 1;  // 0 without a comma
  return list.substr(0, list.find_first_not_of(' ', afterComma));
}

}  // namespace

Candidates noteIDs(const CompletionRequest& request) {
  if (request.value.empty()) return {};
  return ofNotes(&NoteMetadata::id, std::nullopt, request);
}

Candidates titles(const CompletionRequest& request) {
  return ofNotes(&NoteMetadata::title, NoteLocation::notes, request);
}

Candidates tags(const CompletionRequest& request) {
  return tagsOf({}, request);
}

Candidates tagsOf(const NoteOnLine& note, const CompletionRequest& request) {
  return asTyped(ListTagsOp::execute({.id = note.id, .title = note.title}, storeForReading()),
                 request);
}

Candidates pinsOf(const NoteOnLine& note, const CompletionRequest& request) {
  auto pins = ListPinsOp::execute({.id = note.id, .title = note.title}, storeForReading());
  if (request.value.starts_with('#')) return pins;
  for (std::string& pin : pins)
    if (std::string name = TagParser::canonicalName(pin); name != global) pin = std::move(name);
  return pins;
}

Candidates pinTargets(const CompletionRequest& request) {
  Candidates targets = tags(request);
  targets.emplace_back(global);
  return targets;
}

Candidates attachmentsOf(const NoteOnLine& note) {
  Candidates names;
  for (AttachmentInfo& attachment :
       ListAttachmentsOp::execute({.id = note.id, .title = note.title}, storeForReading()))
    names.push_back(std::move(attachment.filename));
  return names;
}

Candidates without(const std::vector<std::string>& given, Candidates candidates) {
  std::erase_if(candidates, [&](const std::string& candidate) {
    return std::ranges::find(given, candidate) != given.end();
  });
  return candidates;
}

CandidateFunction commaSeparated(CandidateFunction pieces) {
  return [pieces = std::move(pieces)](const CompletionRequest& request) {
    const std::string before(piecesBefore(request.value));
    CompletionRequest last = request;
    last.value.erase(0, before.size());
    Candidates lists = without(trimmedPieces(before), pieces(last));
    for (std::string& list : lists) list.insert(0, before);
    return lists;
  };
}

Candidates sortCriteria(const CompletionRequest& request) {
  std::vector<std::string> given = trimmedPieces(piecesBefore(request.value));
  for (std::string& piece : given) piece.erase(std::min(piece.find(':'), piece.size()));
  Candidates fields;
  for (const SortField field :
       {SortField::pinned, SortField::modified, SortField::created, SortField::title})
    fields.emplace_back(rawText(field));
  Candidates criteria;
  for (const std::string& field : without(given, std::move(fields)))
    for (const char* order : {"", ":asc", ":desc"}) criteria.push_back(field + order);
  return commaSeparated([&](auto&) { return criteria; })(request);
}

}  // namespace tavi::completions
