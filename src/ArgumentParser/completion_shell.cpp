#include "ArgumentParser/completion_shell.h"

#include <algorithm>

namespace ArgumentParser {

std::optional<CompletionShell> completionShell(std::string_view name) {
  const auto found = std::ranges::find(completionShellNames, name);
  if (found == completionShellNames.end()) return {};
  return static_cast<CompletionShell>(found - completionShellNames.begin());
}

std::string_view name(CompletionShell shell) {
  return completionShellNames[static_cast<std::size_t>(shell)];
}

}  // namespace ArgumentParser
