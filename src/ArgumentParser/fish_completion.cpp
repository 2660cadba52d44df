#include <fmt/format.h>

#include <algorithm>

#include "ArgumentParser/completion_script.h"

// Every `complete` line has a condition, and fish evaluates all of them on each press of the tab
// key. The script therefore parses the words before the cursor once; the conditions only compare.

namespace ArgumentParser {

namespace {

constexpr std::string_view kHelpers =
    R"sh(# Prints the words of the line, one a line and without quoting. Takes the flags of `commandline`.
function _@PROGRAM@_tokens
    if test (string split -m 1 . -- $FISH_VERSION)[1] -gt 3
        commandline --tokens-raw $argv | string unescape
    else
        commandline -o $argv
    end
end

# Reads the words before the cursor: the commands reached (of a command with a default child, both
# are, until the line tells which), the flags and options given, and the number of the positional
# at the cursor, counted from 1, or 0 where an option's value stands.
function _@PROGRAM@_parse_subcommand
    set -l line (commandline -pc)
    if set -q _@PROGRAM@_line; and test "$line" = "$_@PROGRAM@_line"
        return
    end
    set -g _@PROGRAM@_line $line
    set -g _@PROGRAM@_reached @ROOT_PATHS@
    set -g _@PROGRAM@_given
    set -g _@PROGRAM@_positional_number 1
    set -g _@PROGRAM@_is_terminated no
    set -l command @ROOT_PATH@
    set -l valued @ROOT_VALUED@
    set -l tokens (_@PROGRAM@_tokens -pc)
    set -e tokens[1]
    while set -q tokens[1]
        set -l word $tokens[1]
        set -e tokens[1]
        if test $_@PROGRAM@_is_terminated = yes; or not string match -q -- '-?*' $word
            if test $_@PROGRAM@_is_terminated = no
                switch "$command/$word"
@CHILDREN@
                end
                if set -q _@PROGRAM@_reached[2]
                    set -e _@PROGRAM@_reached[1]
                    set command $_@PROGRAM@_reached[1]
                end
            end
            set _@PROGRAM@_positional_number (math $_@PROGRAM@_positional_number + 1)
        else if test "$word" = --
            set _@PROGRAM@_is_terminated yes
        else
            set -l name (string split -m 1 = -- $word)[1]
            if not string match -q -- '*=*' $word; and contains -- $name $valued
                if not set -q tokens[1]
                    set _@PROGRAM@_positional_number 0
                    return
                end
                set -e tokens[1]
            end
            set -a _@PROGRAM@_given $name
        end
    end
end

# Whether the command $argv[1] is reached, and no flag or option of the names behind it is given.
function _@PROGRAM@_should_offer_completions_for_flags_or_options
    _@PROGRAM@_parse_subcommand
    contains -- $argv[1] $_@PROGRAM@_reached; or return 1
    test $_@PROGRAM@_is_terminated = no; or return 1
    for name in $argv[2..]
        contains -- $name $_@PROGRAM@_given; and return 1
    end
    return 0
end

# Whether the positional $argv[2] of the command $argv[1], or with a third argument one behind
# it, stands at the cursor.
function _@PROGRAM@_should_offer_completions_for_positional
    _@PROGRAM@_parse_subcommand
    contains -- $argv[1] $_@PROGRAM@_reached; or return 1
    if set -q argv[3]
        test $_@PROGRAM@_positional_number -ge $argv[2]
    else
        test $_@PROGRAM@_positional_number -eq $argv[2]
    end
end

# The text of the word at the cursor, as far as it is typed, without quoting.
function _@PROGRAM@_current_token
    set -l token (commandline -ct)
    string unescape -- "$token"; or string trim -lc "'\"" -- "$token"
end

# Offers files with one of the extensions $argv, or all if there are none, and directories.
function _@PROGRAM@_complete_files
    set -l start (_@PROGRAM@_current_token | string replace -r '^~/' "$HOME/")
    for file in "$start"*
        if test -d $file
            echo $file/
        else if not set -q argv[1]; or contains -- (string split -r -m 1 . -- $file)[-1] $argv
            echo $file
        end
    end
end

function _@PROGRAM@_complete_directories
    set -l start (_@PROGRAM@_current_token | string replace -r '^~/' "$HOME/")
    for directory in "$start"*/
        echo $directory
    end
end

# Asks the program: $argv is the path of subcommands, "--", and the argument.
function _@PROGRAM@_custom_completion
    set -lx SAP_SHELL fish
    set -lx SAP_SHELL_VERSION $FISH_VERSION
    set -l tokens (_@PROGRAM@_tokens -pc)
    set -l program (string replace -r '^~/' "$HOME/" -- $tokens[1])
    set -l current (_@PROGRAM@_current_token)
    # Behind a tab, fish would read a description.
    $program ---completion $argv $tokens "$current" </dev/null 2>/dev/null | string match -v '*'\t'*'
end

complete -c @NAME@ -f
)sh";

/// The text in single quotes, as fish reads them.
std::string fishQuoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') result += '\\';
    result += c;
  }
  return result + "'";
}

/// Made of characters that names of variables may have: fish takes no hyphen there.
std::string variableName(std::string name) {
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

class FishScript {
 public:
  explicit FishScript(const CompletionCommand& root)
      : root_(root), program_(variableName(root.functionName())), prefix_("_" + program_) {}

  std::string write() {
    addChildren(root_);
    script_ = filled(kHelpers, {{"@PROGRAM@", program_},
                                {"@ROOT_PATHS@", reached(root_)},
                                {"@ROOT_PATH@", path(root_)},
                                {"@ROOT_VALUED@", valued(root_)},
                                {"@CHILDREN@", children_},
                                {"@NAME@", fishQuoted(root_.path.front())}});
    writeCommand(root_);
    script_.pop_back();
    return std::move(script_);
  }

 private:
  void addChildren(const CompletionCommand& command);
  void writeCommand(const CompletionCommand& command);
  void writeOption(const CompletionCommand& command, const CompletionArgument& argument);
  void writeComplete(const std::string& condition, const std::string& rest) {
    script_ += fmt::format("complete -c {} -n {} {}\n", fishQuoted(root_.path.front()),
                           fishQuoted(condition), rest);
  }
  std::string candidates(const CompletionCommand& command,
                         const CompletionArgument& argument) const;

  static std::string path(const CompletionCommand& command) {
    return fishQuoted(joined(command.path, " "));
  }
  /// The paths of the command and of its default subcommands: all may continue the line after its
  /// name.
  static std::string reached(const CompletionCommand& command) {
    const CompletionCommand* child = command.defaultChild();
    return child ? path(command) + " " + reached(*child) : path(command);
  }
  static std::string valued(const CompletionCommand& command);
  static std::string description(const std::string& abstract) {
    return abstract.empty() ? "" : " -d " + fishQuoted(abstract);
  }

  const CompletionCommand& root_;
  std::string program_;
  std::string prefix_;
  std::string children_;
  std::string script_;
};

/// The names of the options that take a value.
std::string FishScript::valued(const CompletionCommand& command) {
  std::vector<std::string> names;
  for (const auto& [owner, argument] : command.options())
    if (!argument->definition.isFlag())
      for (const std::string& name : argument->names()) names.push_back(name);
  return joined(names, " ");
}

void FishScript::addChildren(const CompletionCommand& command) {
  const std::string parent = joined(command.path, " ");
  for (const CompletionCommand& child : command.children) {
    const auto pattern = [&](const std::string& name) { return fishQuoted(parent + "/" + name); };
    if (!children_.empty()) children_ += '\n';
    children_ += fmt::format(
        "                    case {}\n"
        "                        set command {}\n"
        "                        set valued {}\n"
        "                        set {}_reached {}\n"
        "                        continue",
        joined(each(child.names, pattern), " "), path(child), valued(child), prefix_,
        reached(child));
    addChildren(child);
  }
}

void FishScript::writeCommand(const CompletionCommand& command) {
  for (const CompletionCommand& child : command.children)
    writeComplete(
        fmt::format("{}_should_offer_completions_for_positional {} 1", prefix_, path(command)),
        "-fa " + fishQuoted(child.names.front()) + description(child.abstract));
  const auto positionals = command.positionals();
  for (std::size_t i = 0; i < positionals.size(); ++i) {
    const std::string values = candidates(command, *positionals[i]);
    if (values.empty()) continue;
    writeComplete(
        fmt::format("{}_should_offer_completions_for_positional {} {}{}", prefix_, path(command),
                    i + 1, positionals[i]->definition.isRepeating ? " repeating" : ""),
        "-fka " + fishQuoted(values));
  }
  for (const CompletionArgument& argument : command.arguments)
    if (!argument.definition.isPositional() && argument.definition.isVisible)
      writeOption(command, argument);
  for (const CompletionCommand& child : command.children) writeCommand(child);
}

void FishScript::writeOption(const CompletionCommand& command, const CompletionArgument& argument) {
  const ArgumentDefinition& definition = argument.definition;
  std::string condition =
      fmt::format("{}_should_offer_completions_for_flags_or_options {}", prefix_, path(command));
  if (!definition.isRepeating) condition += " " + joined(argument.names(), " ");
  std::string rest;
  for (const Name& name : definition.names) {
    constexpr const char* flags[] = {"-l", "-s", "-o"};
    rest += fmt::format("{} {} ", flags[static_cast<int>(name.kind)], fishQuoted(name.text));
  }
  rest += definition.isFlag() ? "-f" : "-rfka " + fishQuoted(candidates(command, argument));
  writeComplete(condition, rest + description(definition.abstract));
}

/// The fish expression that yields the candidates.
std::string FishScript::candidates(const CompletionCommand& command,
                                   const CompletionArgument& argument) const {
  const CompletionKind kind = argument.definition.completionKind();
  if (const auto* list = std::get_if<CompletionList>(&kind))
    return joined(each(list->values, fishQuoted), " ");
  if (const auto* files = std::get_if<CompletionFiles>(&kind))
    return fmt::format("({}_complete_files {})", prefix_,
                       joined(each(files->extensions, fishQuoted), " "));
  if (std::holds_alternative<CompletionDirectories>(kind))
    return fmt::format("({}_complete_directories)", prefix_);
  if (const auto* shell = std::get_if<CompletionShellCommand>(&kind))
    return fmt::format("(sh -c {} 2>/dev/null)", fishQuoted(shell->command));
  if (std::holds_alternative<CompletionCustom>(kind))
    return fmt::format("({}_custom_completion {} -- {})", prefix_, command.subcommandPath(),
                       fishQuoted(argument.identifier));
  return {};
}

}  // namespace

std::string fishCompletionScript(const CompletionCommand& root) {
  return FishScript(root).write();
}

}  // namespace ArgumentParser
