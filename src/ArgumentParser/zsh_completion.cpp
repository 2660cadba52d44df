#include <fmt/format.h>

#include "ArgumentParser/completion_script.h"

namespace ArgumentParser {

namespace {

constexpr std::string_view kHelpers = R"sh(
# Offers texts, quoted as the line needs it: with history expansion, "!" too.
_@PROGRAM@_complete() {
    setopt localoptions "${bang_history}"
    local -a candidates
    candidates=("${(@)argv:#}")
    ((${#candidates})) && compadd -a candidates
}

# Offers the lines that a shell command prints.
_@PROGRAM@_complete_output() {
    _@PROGRAM@_complete "${(@f)"$(eval "$1" 2>/dev/null)"}"
}

# Asks the program: "$@" is the path of subcommands, "--", and the argument.
_@PROGRAM@_custom_complete() {
    _@PROGRAM@_complete \
        "${(@f)"$("${line_words[1]}" ---completion "$@" "${(@)line_words}" </dev/null 2>/dev/null)"}"
}
)sh";

constexpr std::string_view kRootStart = R"sh(
@FUNCTION@() {
    local bang_history=nobanghist
    [[ -o banghist ]] && bang_history=banghist
    emulate -RL zsh -G
    setopt extendedglob nullglob numericglobsort
    unsetopt aliases banghist

    local -x SAP_SHELL=zsh SAP_SHELL_VERSION="${ZSH_VERSION}"

    # The words up to the cursor, without quoting.
    local -a line_words
    line_words=("${(@Q)words[1,CURRENT-1]}" "${(Q)PREFIX}")
    line_words[1]="${line_words[1]/#\~\//${HOME}/}"

    @FUNCTION@_command
}

if [[ "${funcstack[1]}" == @FUNCTION@ ]]; then
    @FUNCTION@ "$@"
else
    compdef @FUNCTION@ @NAME@
fi)sh";

/// The text in single quotes, as zsh reads them.
std::string zshQuoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? "'\\''" : std::string(1, c);
  return result + "'";
}

/// Escapes a text for an argument of zsh's `_arguments`, in which the special characters delimit
/// parts. Line breaks become spaces.
std::string escaped(std::string_view text, std::string_view special) {
  std::string result;
  for (const char c : text) {
    if (c == '\\' || special.find(c) != special.npos) result += '\\';
    result += c == '\n' ? ' ' : c;
  }
  return result;
}

class ZshScript {
 public:
  explicit ZshScript(const CompletionCommand& root)
      : root_(root), prefix_("_" + root.functionName()) {}

  std::string write() {
    script_ = "#compdef " + root_.path.front() + "\n";
    script_ += filled(kHelpers, {{"@PROGRAM@", root_.functionName()}});
    writeCommand(root_);
    script_ += filled(kRootStart, {{"@FUNCTION@", root_.functionName()},
                                   {"@NAME@", zshQuoted(root_.path.front())}});
    return std::move(script_);
  }

 private:
  void writeCommand(const CompletionCommand& command);
  void writeHandOverToDefault(const CompletionCommand& command);
  void writeSubcommands(const CompletionCommand& command);
  void writeTexts(const CompletionCommand& command);
  std::string entry(const CompletionCommand& command, std::size_t index) const;
  std::string action(const CompletionCommand& command, std::size_t index) const;

  void line(int depth, std::string_view text) {
    script_.append(static_cast<std::size_t>(4 * depth), ' ').append(text).append("\n");
  }
  static std::string function(const CompletionCommand& command) {
    return command.functionName() + "_command";
  }

  const CompletionCommand& root_;
  std::string prefix_;
  std::string script_;
};

void ZshScript::writeCommand(const CompletionCommand& command) {
  script_ += fmt::format("\n{}() {{\n", function(command));
  line(1, "local -i ret=1");
  line(1, "local context state state_descr line");
  line(1, "local -A opt_args");
  if (command.defaultIndex) writeHandOverToDefault(command);
  writeTexts(command);
  line(1, "local -a arg_specs");
  line(1, "arg_specs=(");
  for (std::size_t i = 0; i < command.arguments.size(); ++i) {
    const ArgumentDefinition& definition = command.arguments[i].definition;
    if (definition.isPositional() || definition.isVisible) line(2, entry(command, i));
  }
  if (!command.children.empty()) {
    line(2, "'(-): :->command'");
    line(2, "'(-)*:: :->arg'");
  }
  line(1, ")");
  line(1, "_arguments -w -s -S : \"${arg_specs[@]}\" && ret=0");
  if (!command.children.empty()) writeSubcommands(command);
  line(1, "return \"${ret}\"");
  script_ += "}\n";
  for (const CompletionCommand& child : command.children) writeCommand(child);
}

/// Passes the line on to the default subcommand if it names no subcommand and the cursor is not
/// where one may be named.
void ZshScript::writeHandOverToDefault(const CompletionCommand& command) {
  std::vector<std::string> names;
  for (const CompletionCommand& child : command.children)
    for (const std::string& name : child.names) names.push_back(zshQuoted(name));
  line(1, "local first=\"${${(@)words[2,CURRENT-1]:#-*}[1]}\"");
  line(1,
       fmt::format("if [[ -n \"${{first}}\" && \"${{first}}\" != ({}) ]] ||", joined(names, "|")));
  line(2, "[[ -z \"${first}\" && ( CURRENT -gt 2 || \"${words[CURRENT]}\" == -* ) ]]; then");
  line(2, function(*command.defaultChild()));
  line(2, "return");
  line(1, "fi");
}

void ZshScript::writeSubcommands(const CompletionCommand& command) {
  line(1, "case \"${state}\" in");
  line(1, "command)");
  line(2, "local -a subcommands");
  line(2, "subcommands=(");
  for (const CompletionCommand& child : command.children)
    line(3, zshQuoted(escaped(child.names.front(), ":") + ":" + escaped(child.abstract, "")));
  line(2, ")");
  line(2, "_describe -V subcommand subcommands && ret=0");
  if (const CompletionCommand* child = command.defaultChild())
    line(2, function(*child) + " && ret=0");
  line(2, ";;");
  line(1, "arg)");
  line(2, "case \"${words[1]}\" in");
  for (const CompletionCommand& child : command.children)
    line(2, fmt::format("{}) {} && ret=0 ;;", joined(each(child.names, zshQuoted), " | "),
                        function(child)));
  line(2, "esac");
  line(2, ";;");
  line(1, "esac");
}

/// Writes the values and shell commands of arguments into variables, which the entries refer to:
/// within an entry, some characters are special and cannot be quoted.
void ZshScript::writeTexts(const CompletionCommand& command) {
  for (std::size_t i = 0; i < command.arguments.size(); ++i) {
    const CompletionKind kind = command.arguments[i].definition.completionKind();
    std::vector<std::string> texts;
    if (const auto* list = std::get_if<CompletionList>(&kind)) texts = list->values;
    if (const auto* shell = std::get_if<CompletionShellCommand>(&kind)) texts = {shell->command};
    if (texts.empty()) continue;
    line(1, fmt::format("local -a texts_{}", i));
    line(1, fmt::format("texts_{}=({})", i, joined(each(texts, zshQuoted), " ")));
  }
}

std::string ZshScript::entry(const CompletionCommand& command, std::size_t index) const {
  const CompletionArgument& argument = command.arguments[index];
  const ArgumentDefinition& definition = argument.definition;
  const std::string value =
      fmt::format(":{}:{}", escaped(definition.valueName, ":"), action(command, index));
  if (definition.isPositional()) return zshQuoted((definition.isRepeating ? "*" : "") + value);
  const std::string description = "[" + escaped(definition.abstract, "[]:") + "]";
  const std::string once = definition.isRepeating ? "*" : "(" + joined(argument.names(), " ") + ")";
  std::vector<std::string> forms;
  for (const Name& name : definition.names) {
    const bool takesEqualSign = !definition.isFlag() && name.kind == Name::Kind::longName;
    forms.push_back(zshQuoted(once + name.written() + (takesEqualSign ? "=" : "") + description +
                              (definition.isFlag() ? "" : value)));
  }
  return joined(forms, " ");
}

std::string ZshScript::action(const CompletionCommand& command, std::size_t index) const {
  const CompletionArgument& argument = command.arguments[index];
  const CompletionKind kind = argument.definition.completionKind();
  if (std::holds_alternative<CompletionList>(kind))
    return fmt::format("{{{}_complete \"${{(@)texts_{}}}\"}}", prefix_, index);
  if (const auto* files = std::get_if<CompletionFiles>(&kind))
    return files->extensions.empty()
               ? "_files"
               : fmt::format("_files -g \"*.{}\"", joined(files->extensions, " *."));
  if (std::holds_alternative<CompletionDirectories>(kind)) return "_files -/";
  if (std::holds_alternative<CompletionShellCommand>(kind))
    return fmt::format("{{{}_complete_output \"${{texts_{}}}\"}}", prefix_, index);
  if (std::holds_alternative<CompletionCustom>(kind))
    return fmt::format("{{{}_custom_complete {} -- \"{}\"}}", prefix_, command.subcommandPath(),
                       argument.identifier);
  return {};
}

}  // namespace

std::string zshCompletionScript(const CompletionCommand& root) {
  return ZshScript(root).write();
}

}  // namespace ArgumentParser
