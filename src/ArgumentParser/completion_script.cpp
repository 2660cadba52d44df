#include "ArgumentParser/completion_script.h"

namespace ArgumentParser {

std::string completionScript(const CommandType& root, CompletionShell shell) {
  const CompletionCommand tree = completionTree(root);
  switch (shell) {
    case CompletionShell::zsh:
      return zshCompletionScript(tree);
    case CompletionShell::bash:
      return bashCompletionScript(tree);
    case CompletionShell::fish:
      return fishCompletionScript(tree);
  }
  return {};
}

}  // namespace ArgumentParser
