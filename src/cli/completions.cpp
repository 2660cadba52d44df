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
#include "store/search_words.h"

namespace tavi::completions {
namespace {

constexpr std::string_view global = "global";  // the pin; a tag of that name is "#global"

NoteStore& storeForReading() {
  return openStore({.onlyReads = true});
}

/// A property of each note, the most recently modified note first. bash filters candidates slowly,
/// so it only gets those that match. The other shells have their own rules for matching.
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

/// The position after the closing quote of the phrase at `at`; the end of the query if the phrase
/// is not closed.
std::size_t endOfPhrase(std::string_view query, std::size_t at) {
  for (++at; at < query.size(); ++at) {
    if (query[at] == '"') return at + 1;
    if (query[at] == '\\') ++at;
  }
  return query.size();
}

/// The positions in a query where an unfinished term may begin: in `a "b c" #d e` those of "#d e"
/// and "e". There may be several, since the name of a tag may contain blanks.
std::vector<std::size_t> openTerms(std::string_view query) {
  std::vector<std::size_t> places;
  std::size_t at = 0;
  while ((at = query.find_first_not_of(" \t\n-", at)) != std::string_view::npos) {
    if (query[at] != '"') {
      places.push_back(at);
      at = std::min(query.find_first_of(" \t\n", at), query.size());
      continue;
    }
    places.clear();  // a tag does not extend across a phrase
    at = endOfPhrase(query, at);
  }
  return places;
}

/// All tags as search terms. `mark`: "" for "#work", which includes descendants, or "!" for
/// "!#work".
Candidates tagTerms(const std::string& mark) {
  Candidates terms;
  for (const std::string& name : ListTagsOp::execute({}, storeForReading()))
    if (const auto written = TagParser::writtenForm(name)) terms.push_back(mark + *written);
  return terms;
}

Candidates termsLike(std::string_view typed) {
  if (typed.starts_with('#')) return tagTerms("");
  if (typed.starts_with("!#")) return tagTerms("!");
  Candidates directives;
  if (typed.starts_with('@'))
    for (SearchWord& directive : searchWords()) directives.push_back(std::move(directive.word));
  return directives;
}

/// The part of a list before its last item: "modified, " in "modified, ti".
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

Candidates queries(const CompletionRequest& request) {
  const std::string& query = request.value;
  Candidates candidates;
  for (const std::size_t place : openTerms(query)) {
    const std::string_view typed = std::string_view(query).substr(place);
    for (const std::string& term : termsLike(typed))
      if (term.starts_with(typed)) candidates.push_back(query.substr(0, place) + term);
  }
  return candidates;
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
