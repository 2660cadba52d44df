#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ArgumentParser/completion_kind.h"

/// Completion candidates from the database. They only read: they neither create a database nor wait
/// for a writer. They throw what opening and reading throw, which the parser ignores.
namespace tavi::completions {

using ArgumentParser::CandidateFunction;
using ArgumentParser::CompletionRequest;
using Candidates = std::vector<std::string>;  ///< unquoted texts; see CandidateFunction

/// The note that the command line identifies so far; both fields are absent if it does not.
struct NoteOnLine {
  std::optional<std::string> id, title;
};

/// The ids of all notes in all locations; none while the word is empty, since a list of ids does
/// not help anybody.
Candidates noteIDs(const CompletionRequest& request);
/// The titles of the active notes, which --title accepts.
Candidates titles(const CompletionRequest& request);

/// All tags, as hashtags if the word at the cursor begins with "#".
Candidates tags(const CompletionRequest& request);
/// The tags of the note, or all tags if the line identifies no note.
Candidates tagsOf(const NoteOnLine& note, const CompletionRequest& request);
/// The pins of the note, or all pins if the line identifies no note.
Candidates pinsOf(const NoteOnLine& note, const CompletionRequest& request);
/// The contexts that a note can be pinned in: "global" and all tags.
Candidates pinTargets(const CompletionRequest& request);

/// The file names of the note's attachments.
Candidates attachmentsOf(const NoteOnLine& note);

/// Search queries. A last term that begins with "#", "!#" or "@", optionally after "-", is
/// completed to a tag or a directive of the search language.
Candidates queries(const CompletionRequest& request);

/// Removes candidates that are already on the line.
Candidates without(const std::vector<std::string>& given, Candidates candidates);

/// Completes the last item of a comma-separated list with those `pieces` that it does not contain.
CandidateFunction commaSeparated(CandidateFunction pieces);

/// Values of --sort: fields with and without an order.
Candidates sortCriteria(const CompletionRequest& request);

}  // namespace tavi::completions
