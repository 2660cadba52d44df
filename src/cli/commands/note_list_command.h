#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/commands/command.h"
#include "cli/session.h"

namespace tavi {

/// A note and a list of names: <note-id> <names> ..., or --title and the names alone. The parser
/// cannot know that the first word behind a --title is a name already.
class NoteListCommand : public LeafCommand {
 public:
  void declare(ArgumentSet& args) override {
    args.argument(id_, "note-id").help(texts_.id);
    args.argument(names_, texts_.names.name).help(texts_.names.description);
    args.option(title_, {"-t", "--title"}).help(texts_.title);
  }

 protected:
  struct Texts {
    std::string_view id;
    FieldDoc names;
    std::string_view title;
  };
  explicit NoteListCommand(const Texts& texts) : texts_(texts) {}

  /// `list`: the member of the operation's input that takes the names.
  template <class Operation>
  void execute(std::vector<std::string> Operation::Input::*list) const {
    NoteStore& store = openStore();
    typename Operation::Input input;
    input.title = title_;
    if (title_ && id_) {
      (input.*list).push_back(*id_);
    } else {
      input.id = id_;
    }
    (input.*list).insert((input.*list).end(), names_.begin(), names_.end());
    Operation::execute(input, store);
  }

 private:
  Texts texts_;
  std::optional<std::string> id_, title_;
  std::vector<std::string> names_;
};

}  // namespace tavi
