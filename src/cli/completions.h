#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ArgumentParser/completion_kind.h"

/// Candidates for values that only the database knows. They only read it: no database is created
/// and no writer waited for. They throw what opening and reading throw; the parser ignores that.
namespace tavi::completions {

using ArgumentParser::CandidateFunction;
using ArgumentParser::CompletionRequest;
using Candidates = std::vector<std::string>;

/// The note that a line names, as far as it does.
struct NoteOnLine {
  std::optional<std::string> id, title;
};

/// Of every note, wherever it is; none before a character is typed, since nobody knows one by
/// heart.
Candidates noteIDs(const CompletionRequest& request);
/// Those that --title finds: of the active notes.
Candidates titles(const CompletionRequest& request);

// Tags come as they are typed: with hash marks if the word begins with one.
Candidates tags(const CompletionRequest& request);
/// The note's own tags, or all of them where no note is named; the same for pins.
Candidates tagsOf(const NoteOnLine& note, const CompletionRequest& request);
Candidates pinsOf(const NoteOnLine& note, const CompletionRequest& request);
/// Where a note may be pinned.
Candidates pinTargets(const CompletionRequest& request);

/// None where no note is named.
Candidates attachmentsOf(const NoteOnLine& note);

/// Queries: the last term, where it begins with "#", "!#" or "@", after "-" too, becomes a tag or a
/// directive of the search language.
Candidates queries(const CompletionRequest& request);

/// Candidates that the line does not have yet.
Candidates without(const std::vector<std::string>& given, Candidates candidates);

/// A list with commas: its last piece is completed, by what is not in it already.
CandidateFunction commaSeparated(CandidateFunction pieces);

/// Values of --sort: fields, with and without a direction.
Candidates sortCriteria(const CompletionRequest& request);

}  // namespace tavi::completions
