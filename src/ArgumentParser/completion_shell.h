#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace ArgumentParser {

/// The shells that a completion script can be written for.
enum class CompletionShell { zsh, bash, fish };

inline constexpr std::array<std::string_view, 3> completionShellNames{"zsh", "bash", "fish"};

std::optional<CompletionShell> completionShell(std::string_view name);
std::string_view name(CompletionShell shell);

}  // namespace ArgumentParser
