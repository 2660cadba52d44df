#include <fmt/format.h>

#include "ArgumentParser/completion_script.h"

// How the script works: candidates are unquoted texts. The script compares them with the unquoted
// word at the cursor and quotes them in the style of that word before they go into the line. With
// `complete -o filenames` readline would quote them, but it leaves "$HOME" unquoted, so only file
// names are left to readline. The shell never evaluates what the program prints.

namespace ArgumentParser {

namespace {

constexpr std::string_view kHelpers = R"sh(#!/bin/bash

# The part of the word at the cursor that readline does not replace, since it cuts words at
# characters such as ":" and "=", counted in characters without quoting.
_@PROGRAM@_cursor_index_in_current_word() {
    local dequoted quote
    _@PROGRAM@_dequote "${1%"$2"}"
    kept_length="${#dequoted}"
}

# Takes the quoting off a word, which may end within quotes. Answers in "dequoted", and in "quote"
# what it ends within.
_@PROGRAM@_dequote() {
    local word="$1" character next
    local -i index
    quote=''
    dequoted=''
    for ((index = 0; index < ${#word}; index++)); do
        character="${word:index:1}"
        if [[ -n "${quote}" && "${character}" == "${quote}" ]]; then
            quote=''
        elif [[ -z "${quote}" && "${character}" == [\'\"] ]]; then
            quote="${character}"
        elif [[ "${character}" == \\ && "${quote}" != \' ]]; then
            index+=1
            next="${word:index:1}"
            [[ "${quote}" == \" && "${next}" != [\"\\\$\`] ]] && dequoted+=\\
            dequoted+="${next}"
        else
            dequoted+="${character}"
        fi
    done
}

# Reads the words up to the cursor into "words", those before it, and "cur", the one at it,
# whole and without quoting. "$1": what readline takes for the word at the cursor.
_@PROGRAM@_read_words() {
    local rest="${COMP_LINE:0:COMP_POINT}" word='' piece dequoted quote
    local -i index
    rest="${rest#*"${COMP_WORDS[0]}"}"
    words=("${COMP_WORDS[0]/#\~\//${HOME}/}")
    for ((index = 1; index <= COMP_CWORD; index++)); do
        if [[ "${rest}" == [[:space:]]* ]]; then
            if ((index > 1)); then
                _@PROGRAM@_dequote "${word}"
                words+=("${dequoted}")
            fi
            word=''
            rest="${rest#"${rest%%[![:space:]]*}"}"
        fi
        piece="${COMP_WORDS[index]}"
        ((index == COMP_CWORD)) && piece="${rest}"
        word+="${piece}"
        rest="${rest#"${piece}"}"
    done
    _@PROGRAM@_dequote "${word}"
    cur="${dequoted}"
    open_quote="${quote}"
    whole_word="${cur}"
    _@PROGRAM@_cursor_index_in_current_word "${word}" "$1"
}

# Offers those of its arguments that continue the word at the cursor.
_@PROGRAM@_add_completions() {
    local candidate
    compopt +o filenames 2>/dev/null
    for candidate in "$@"; do
        [[ -z "${candidate}" || "${candidate}" != "${cur}"* ]] && continue
        candidate="${option_prefix}${candidate}"
        candidate="${candidate:kept_length}"
        case "${open_quote}" in
        \')
            candidate="${candidate//\'/"'\''"}"
            ;;
        \")
            candidate="${candidate//\\/\\\\}"
            candidate="${candidate//\"/\\\"}"
            candidate="${candidate//\$/\\\$}"
            candidate="${candidate//\`/\\\`}"
            # History is expanded within double quotes, and not quoted there.
            [[ "$-" == *H* ]] && candidate="${candidate//!/\"\\!\"}"
            ;;
        *)
            printf -v candidate '%q' "${candidate}"
            candidate="${candidate//\\,/,}" # which means nothing to a shell outside of braces
            ;;
        esac
        COMPREPLY+=("${candidate}")
    done
}

# Offers the flags and options that are left.
_@PROGRAM@_add_left() {
    local -a names
    read -ra names <<<"${left[*]}"
    _@PROGRAM@_add_completions "${names[@]}"
}

# Offers the lines of its input.
_@PROGRAM@_add_lines() {
    local -a lines
    mapfile -t lines
    _@PROGRAM@_add_completions "${lines[@]}"
}

# Offers the file names that are its input: directories, and files with one of the extensions
# that are its arguments, or all files if there are none.
_@PROGRAM@_add_files() {
    local -a files
    local file extension
    mapfile -t files
    compopt -o filenames 2>/dev/null
    for file in "${files[@]}"; do
        extension="${file##*.}"
        if (($# == 0)) || [[ -d "${file/#\~\//${HOME}/}" || " $* " == *" ${extension} "* ]]; then
            file="${option_prefix}${file}"
            COMPREPLY+=("${file:kept_length}")
        fi
    done
}

# Asks the program: "$@" is the path of subcommands, "--", and the argument.
_@PROGRAM@_custom_complete() {
    _@PROGRAM@_add_lines < <("${words[0]}" ---completion "$@" "${words[@]}" "${whole_word}" \
        </dev/null 2>/dev/null)
}

# Reads the words behind a command's name up to the cursor. Flags and options that are given are
# not offered again unless they repeat. Answers in "prev" the option whose value stands at the
# cursor, in "positional_number" the positional that does, counted from 1, or 0 where flags and
# options are offered, and in "subcommand" the first positional of a command with subcommands.
_@PROGRAM@_offer_flags_options() {
    local has_subcommands="$1" word name
    local -i index is_terminated=0
    local valued=" ${repeating_options[*]} ${non_repeating_options[*]} "
    left=("${non_repeating_flags[@]}" "${non_repeating_options[@]}")
    prev=''
    subcommand=''
    positional_number=1
    while ((word_index < ${#words[@]})); do
        word="${words[word_index]}"
        word_index+=1
        if ((is_terminated)) || [[ "${word}" != -?* ]]; then
            if [[ "${has_subcommands}" == yes && is_terminated -eq 0 ]]; then
                subcommand="${word}"
                return
            fi
            positional_number+=1
        elif [[ "${word}" == -- ]]; then
            is_terminated=1
        else
            name="${word%%=*}"
            for index in "${!left[@]}"; do
                [[ " ${left[index]} " == *" ${name} "* ]] && unset "left[index]"
            done
            if [[ "${word}" != *=* && "${valued}" == *" ${name} "* ]]; then
                if ((word_index == ${#words[@]})); then
                    prev="${name}"
                    return
                fi
                word_index+=1
            fi
        fi
    done
    ((is_terminated)) && left=() && return
    left+=("${repeating_flags[@]}" "${repeating_options[@]}")
    name="${cur%%=*}"
    if [[ "${cur}" == -*=* && "${valued}" == *" ${name} "* ]]; then
        prev="${name}"
        option_prefix="${name}="
        cur="${cur#*=}"
    elif [[ "${cur}" == -* ]]; then
        positional_number=0
        _@PROGRAM@_add_left
    fi
}

# Where nothing else can stand, flags and options are offered unasked.
_@PROGRAM@_offer_rest() {
    [[ ${#COMPREPLY[@]} -eq 0 && -z "${cur}" ]] && _@PROGRAM@_add_left
}
)sh";

constexpr std::string_view kRootStart = R"sh(
@FUNCTION@() {
    local saved_options
    saved_options="$(shopt -p extglob)"
    shopt -s extglob

    local -x SAP_SHELL=bash SAP_SHELL_VERSION
    SAP_SHELL_VERSION="$(
        IFS=.
        printf '%s' "${BASH_VERSINFO[*]}"
    )"

    local IFS=$' \t\n'
    local -a words left
    local cur whole_word open_quote prev subcommand option_prefix=''
    local -i kept_length=0 word_index=1 positional_number
    COMPREPLY=()
    _@PROGRAM@_read_words "$2"
    @FUNCTION@_command

    eval "${saved_options}"
}

complete -o filenames -F @FUNCTION@ @NAME@)sh";

std::string bashQuoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? "'\\''" : std::string(1, c);
  return result + "'";
}

class BashScript {
 public:
  explicit BashScript(const CompletionCommand& root)
      : root_(root), prefix_("_" + root.functionName()) {}

  std::string write() {
    const std::string program = root_.functionName();
    script_ = filled(kHelpers, {{"@PROGRAM@", program}});
    writeCommand(root_);
    script_ += filled(kRootStart, {{"@PROGRAM@", program},
                                   {"@FUNCTION@", program},
                                   {"@NAME@", bashQuoted(root_.path.front())}});
    return std::move(script_);
  }

 private:
  void writeCommand(const CompletionCommand& command);
  void writeNames(const CompletionCommand& command, const char* variable, bool isFlag,
                  bool isRepeating);
  void writeOptionValues(const CompletionCommand& command);
  void writePositionals(const CompletionCommand& command);
  void writeSubcommands(const CompletionCommand& command);
  std::string action(const CompletionCommand& command, const CompletionArgument& argument) const;

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

void BashScript::writeCommand(const CompletionCommand& command) {
  script_ += fmt::format("\n{}() {{\n", function(command));
  writeNames(command, "repeating_flags", true, true);
  writeNames(command, "non_repeating_flags", true, false);
  writeNames(command, "repeating_options", false, true);
  writeNames(command, "non_repeating_options", false, false);
  const bool hasSubcommands = !command.children.empty();
  if (command.defaultIndex) line(1, "local -i start=word_index");
  line(1, prefix_ + "_offer_flags_options " + (hasSubcommands ? "yes" : "no"));
  writeOptionValues(command);
  if (hasSubcommands) {
    writeSubcommands(command);
  } else {
    writePositionals(command);
  }
  line(1, prefix_ + "_offer_rest");
  script_ += "}\n";
  for (const CompletionCommand& child : command.children) writeCommand(child);
}

/// Each entry holds all names of one flag or option: once one of them is given, none is offered.
void BashScript::writeNames(const CompletionCommand& command, const char* variable, bool isFlag,
                            bool isRepeating) {
  std::vector<std::string> entries;
  for (const auto& [owner, argument] : command.options()) {
    const ArgumentDefinition& definition = argument->definition;
    if (definition.isFlag() != isFlag || definition.isRepeating != isRepeating) continue;
    entries.push_back(bashQuoted(joined(argument->names(), " ")));
  }
  line(1, fmt::format("local -a {}=({})", variable, joined(entries, " ")));
}

void BashScript::writeOptionValues(const CompletionCommand& command) {
  line(1, "case \"${prev}\" in");
  line(1, "'') ;;");
  for (const auto& [owner, argument] : command.options()) {
    const std::string values = action(*owner, *argument);
    if (argument->definition.isFlag() || values.empty()) continue;
    line(1, joined(argument->names(), " | ") + ")");
    line(2, values);
    line(2, "return");
    line(2, ";;");
  }
  line(1, "*) return ;;");
  line(1, "esac");
}

void BashScript::writePositionals(const CompletionCommand& command) {
  const auto positionals = command.positionals();
  if (positionals.empty()) return;
  line(1, "case \"${positional_number}\" in");
  line(1, "0) ;;");
  for (std::size_t i = 0; i < positionals.size(); ++i) {
    const std::string values = action(command, *positionals[i]);
    if (values.empty()) continue;
    line(1, positionals[i]->definition.isRepeating ? "*)" : std::to_string(i + 1) + ")");
    line(2, values);
    line(2, ";;");
  }
  line(1, "esac");
}

/// Words that do not name a subcommand are completed as arguments of the default subcommand.
void BashScript::writeSubcommands(const CompletionCommand& command) {
  std::vector<std::string> names;
  line(1, "case \"${subcommand}\" in");
  for (const CompletionCommand& child : command.children) {
    names.push_back(bashQuoted(child.names.front()));
    line(1, joined(each(child.names, bashQuoted), " | ") + ")");
    line(2, function(child));
    line(2, "return");
    line(2, ";;");
  }
  const CompletionCommand* defaultChild = command.defaultChild();
  line(1, "'')");
  line(2, "((positional_number == 1)) || return");
  line(2, prefix_ + "_add_completions " + joined(names, " "));
  line(2, ";;");
  if (!defaultChild) line(1, "*) return ;;");
  line(1, "esac");
  if (!defaultChild) return;
  line(1, "word_index=\"${start}\"");
  line(1, function(*defaultChild));
}

std::string BashScript::action(const CompletionCommand& command,
                               const CompletionArgument& argument) const {
  const CompletionKind kind = argument.definition.completionKind();
  if (const auto* list = std::get_if<CompletionList>(&kind))
    return prefix_ + "_add_completions " + joined(each(list->values, bashQuoted), " ");
  if (const auto* files = std::get_if<CompletionFiles>(&kind))
    return fmt::format("{}_add_files {} < <(compgen -f -- \"${{cur}}\")", prefix_,
                       joined(each(files->extensions, bashQuoted), " "));
  if (std::holds_alternative<CompletionDirectories>(kind))
    return prefix_ + "_add_files < <(compgen -d -- \"${cur}\")";
  if (const auto* shell = std::get_if<CompletionShellCommand>(&kind))
    return fmt::format("{}_add_lines < <(eval {} 2>/dev/null)", prefix_,
                       bashQuoted(shell->command));
  if (std::holds_alternative<CompletionCustom>(kind))
    return fmt::format("{}_custom_complete {} -- {}", prefix_, command.subcommandPath(),
                       bashQuoted(argument.identifier));
  return {};
}

}  // namespace

std::string bashCompletionScript(const CompletionCommand& root) {
  return BashScript(root).write();
}

}  // namespace ArgumentParser
