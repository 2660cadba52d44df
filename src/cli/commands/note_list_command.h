#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/commands/command.h"
#include "cli/session.h"

namespace tavi {

/// A command that takes a note and a list of names: <note-id> <names> ..., or --title and <names>
/// .... With --title, the parser still assigns the first name to <note-id>; this class corrects
/// that.
class NoteListCommand : public LeafCommand {
 public:
  void declare(ArgumentSet& args) override {
    const auto names = [this](const CompletionRequest& request) { return namesLeft(request); };
    args.argument(id_, "note-id").help(texts_.id).completes([=, this](const auto& request) {
      return title_ ? names(request) : completions::noteIDs(request);
    });
    args.argument(names_, texts_.names.name).help(texts_.names.description).completes(names);
    args.option(title_, {"-t", "--title"}).help(texts_.title).completes(completions::titles);
  }

 protected:
  using CompletionRequest = completions::CompletionRequest;
  using Candidates = completions::Candidates;
  /// The help texts of the arguments, and the candidates for the names.
  struct Texts {
    std::string_view id;
    FieldDoc names;
    std::string_view title;
    Candidates (*candidates)(const completions::NoteOnLine& note, const CompletionRequest& request);
  };
  explicit NoteListCommand(const Texts& texts) : texts_(texts) {}

  /// Runs the operation. `list`: the member of its input that holds the names.
  template <class Operation>
  void execute(std::vector<std::string> Operation::Input::*list) const {
    NoteStore& store = openStore();
    typename Operation::Input input;
    input.title = title_;
    if (!title_) input.id = id_;
    input.*list = givenNames();
    Operation::execute(input, store);
  }

 private:
  std::vector<std::string> givenNames() const {
    std::vector<std::string> names = names_;
    if (title_ && id_) names.insert(names.begin(), *id_);
    return names;
  }

  Candidates namesLeft(const CompletionRequest& request) const {
    const completions::NoteOnLine note{title_ ? std::nullopt : id_, title_};
    return completions::without(givenNames(), texts_.candidates(note, request));
  }

  Texts texts_;
  std::optional<std::string> id_, title_;
  std::vector<std::string> names_;
};

}  // namespace tavi
