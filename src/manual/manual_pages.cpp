#include "manual/manual_pages.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <boost/json/value.hpp>
#include <cctype>

#include "ArgumentParser/tool_info.h"
#include "cli/help.h"
#include "cli/help_texts.h"
#include "json/json_reader.h"
#include "manual/roff.h"

namespace tavi::manual {
namespace {

using boost::json::object;
using Path = std::vector<std::string>;

// Access to the JSON of dumpHelp, which leaves out fields without a value.

std::string text(const object& info, std::string_view field) {
  const auto* value = info.if_contains(field);
  return value ? std::string(value->as_string()) : std::string();
}

bool flag(const object& info, std::string_view field) {
  return info.at(field).as_bool();
}

/// The elements of a list that are not hidden.
std::vector<const object*> shown(const object& info, std::string_view field) {
  std::vector<const object*> result;
  const auto* list = info.if_contains(field);
  if (!list) return result;
  for (const auto& element : list->as_array())
    if (flag(element.as_object(), "shouldDisplay")) result.push_back(&element.as_object());
  return result;
}

std::vector<std::string> texts(const object& info, std::string_view field) {
  std::vector<std::string> result;
  if (const auto* list = info.if_contains(field))
    for (const auto& element : list->as_array()) result.emplace_back(element.as_string());
  return result;
}

Path pathOf(const object& command) {
  Path path = texts(command, "superCommands");
  path.push_back(text(command, "commandName"));
  return path;
}

bool isPositional(const object& argument) {
  return text(argument, "kind") == "positional";
}

std::string written(const object& name) {
  return (text(name, "kind") == "long" ? "--" : "-") + text(name, "name");
}

// The parts of a page

constexpr const char* unbreakableBlank = "\\ ";  // a blank at which roff does not break the line

std::string pageName(const Path& path) {
  return fmt::format("{}", fmt::join(path, "-"));
}

std::string reference(const Path& path) {
  return Roff::bold(pageName(path)) + "(1)";
}

std::string value(const object& argument) {
  const std::string name = text(argument, "valueName");
  return name.empty() ? name : Roff::italic(name);
}

/// "[--title <title>]", with roff markup.
std::string synopsis(const object& argument) {
  std::string form;
  if (!isPositional(argument)) form = Roff::bold(written(argument.at("preferredName").as_object()));
  if (const std::string taken = value(argument); !taken.empty())
    form += (form.empty() ? "" : unbreakableBlank) + taken;
  if (flag(argument, "isRepeating")) form += std::string(unbreakableBlank) + "...";
  return flag(argument, "isOptional") ? "[" + form + "]" : form;
}

std::string usage(const object& command) {
  Path parts;
  for (const object* argument : shown(command, "arguments"))
    if (isPositional(*argument) || written(argument->at("preferredName").as_object()) != "--help")
      parts.push_back(synopsis(*argument));
  if (!shown(command, "subcommands").empty()) {
    const std::string child = Roff::italic("command") + unbreakableBlank + "...";
    parts.push_back(command.if_contains("defaultSubcommand") ? "[" + child + "]" : child);
  }
  return fmt::format("{}", fmt::join(parts, " "));
}

/// "-t, --title <title>", with roff markup; short names first.
std::string label(const object& argument) {
  if (isPositional(argument)) return value(argument);
  Path names;
  const auto& list = argument.at("names").as_array();
  for (const bool isShort : {true, false})
    for (const auto& name : list)
      if ((text(name.as_object(), "kind") == "short") == isShort)
        names.push_back(Roff::bold(written(name.as_object())));
  const std::string taken = value(argument);
  return fmt::format("{}{}{}", fmt::join(names, ", "), taken.empty() ? "" : " ", taken);
}

std::string description(const object& argument) {
  Path parts;
  if (const auto values = texts(argument, "allValues"); !values.empty())
    parts.push_back(fmt::format("values: {}", fmt::join(values, ", ")));
  if (const auto initial = text(argument, "defaultValue"); !initial.empty())
    parts.push_back("default: " + initial);
  const std::string abstract = text(argument, "abstract");
  if (parts.empty()) return abstract;
  return fmt::format("{}{}({})", abstract, abstract.empty() ? "" : " ", fmt::join(parts, "; "));
}

void addArguments(Roff& page, const object& command, bool positionals) {
  bool isFirst = true;
  for (const object* argument : shown(command, "arguments")) {
    if (isPositional(*argument) != positionals) continue;
    if (std::exchange(isFirst, false)) page.section(positionals ? "ARGUMENTS" : "OPTIONS");
    page.item(label(*argument), description(*argument));
  }
}

void addSubcommands(Roff& page, const object& command) {
  const auto children = shown(command, "subcommands");
  if (children.empty()) return;
  page.section("COMMANDS");
  for (const object* child : children) {
    const bool isDefault = text(command, "defaultSubcommand") == text(*child, "commandName");
    page.item(reference(pathOf(*child)),
              text(*child, "abstract") + (isDefault ? " (default)" : ""));
  }
}

/// Whether the line is a heading such as "NOTE:" or "SAFETY GATE (--force):".
bool isHeading(std::string_view line) {
  return line.ends_with(':') && std::isupper(static_cast<unsigned char>(line[0])) &&
         std::isupper(static_cast<unsigned char>(line[1]));
}

/// Converts the footer of a help page: headings, each followed by indented lines that keep their
/// layout, and paragraphs that are not indented.
class FooterWriter {
 public:
  explicit FooterWriter(Roff& page) : page_(page) {}

  void write(std::string_view footer) {
    while (!footer.empty()) {
      const std::size_t end = std::min(footer.find('\n'), footer.size());
      writeLine(footer.substr(0, end));
      footer.remove_prefix(std::min(end + 1, footer.size()));
    }
    endBlock();
  }

 private:
  void writeLine(std::string_view line) {
    constexpr std::string_view indent = "  ";
    if (line.empty() || line.starts_with(indent)) {
      block_.append(line.empty() ? line : line.substr(indent.size())).append("\n");
      return;
    }
    endBlock();
    if (isHeading(line)) {
      page_.section(line.substr(0, line.size() - 1));
    } else {
      page_.paragraph(line);
    }
  }

  void endBlock() {
    block_.erase(block_.find_last_not_of('\n') + 1);
    block_.erase(0, std::min(block_.find_first_not_of('\n'), block_.size()));
    if (!block_.empty()) page_.verbatim(std::exchange(block_, {}));
  }

  Roff& page_;
  std::string block_;
};

std::string footerOf(const ArgumentParser::CommandType& root, const Path& path) {
  // Programs with a single command have a discussion instead of a footer.
  if (root.configuration().subcommands.empty()) return {};
  const auto stack = resolveCommandPath(root, {path.begin() + 1, path.end()});
  if (!stack) return std::string(overviewText);
  const auto command = stack->back().make();
  const auto* footer = dynamic_cast<const HelpFooter*>(command.get());
  return footer ? std::string(footer->footer()) : std::string();
}

void addSeeAlso(Roff& page, const object& command) {
  const Path above = texts(command, "superCommands");
  Path references;
  for (std::size_t length = 1; length <= above.size(); ++length)
    references.push_back(
        reference({above.begin(), above.begin() + static_cast<std::ptrdiff_t>(length)}));
  for (const object* child : shown(command, "subcommands"))
    references.push_back(reference(pathOf(*child)));
  if (references.empty()) references.push_back(reference({"tavicli"}));
  if (pageName(pathOf(command)) == "tavicli-search" || pageName(pathOf(command)) == "tavicli")
    references.push_back(Roff::bold("tavicli-search-terms") + "(7)");
  page.section("SEE ALSO");
  page.line(fmt::format("{}", fmt::join(references, ",\n")));
}

void addExitStatus(Roff& page) {
  page.section("EXIT STATUS");
  page.item(Roff::bold("0"), "Success, also where nothing was found to print.");
  page.item(Roff::bold("1"), "The command could not be done; a message says why.");
  page.item(Roff::bold("64"), "The command line cannot be taken.");
}

void addFiles(Roff& page) {
  page.section("FILES");
  page.item(Roff::file("~/.local/share/tavi/tavi.sqlite"),
            "The notes. The folder comes into being with the first command.");
  page.item(Roff::file("~/.local/share/tavi/files/"), "The bytes of attachments.");
  page.item(
      Roff::file("~/.local/share/tavi/net.kelvaro.tavi.cli.didRequestRefresh"),
      "An empty file. Its modification time is set by each command that succeeded, so that the "
      "application looks at the notes again.");
  page.item(Roff::file("~/Library/Preferences/X7Q2M5R8K1.net.kelvaro.tavi.plist"),
            "The application's lock: while it is on, every command is refused. Read only.");
  page.item(
      Roff::file(
          "~/Library/Containers/net.kelvaro.tavi/Data/Library/Preferences/net.kelvaro.tavi.plist"),
      "Where the application puts tags in a note. Read only.");
}

void addEnvironment(Roff& page) {
  page.section("ENVIRONMENT");
  page.item(Roff::bold("HOME"),
            "The home directory; the user's entry in /etc/passwd when it is not set.");
  page.item(Roff::bold("XDG_DATA_HOME"),
            "Stands for ~/.local/share where it is set to an absolute path.");
  page.item(Roff::bold("LC_ALL") + ", " + Roff::bold("LC_COLLATE") + ", " + Roff::bold("LANG"),
            "The language by whose rules titles and tags are sorted: the first that is set.");
  page.item(Roff::bold("TZ"), "The time zone of the days in a search.");
  page.item(
      Roff::bold("TMPDIR"),
      "The folder where an attachment is collected before it is added; /tmp when it is not set.");
  page.item(Roff::bold("PATH"), "Where xdg-open is looked for, which opens a note.");
  page.item(Roff::bold("COLUMNS"), "The width of help pages.");
  page.item(Roff::bold("SHELL"),
            "The shell for which a completion script is written when none is named.");
}

/// Collects the pages of a program's commands.
class Manual {
 public:
  Manual(const ArgumentParser::CommandType& root, const Release& release)
      : root_(root),
        program_(root.configuration().commandName + " " + release.version),
        date_(release.date) {}

  void add(const object& command) {
    pages.push_back({pageName(pathOf(command)), 1, page(command)});
    for (const object* child : shown(command, "subcommands")) add(*child);
  }

  std::vector<ManualPage> pages;

 private:
  std::string page(const object& command) const {
    const Path path = pathOf(command);
    const std::string name = pageName(path);
    Roff page({.name = name, .date = date_, .program = program_});
    const std::string abstract = text(command, "abstract");
    page.name(name, abstract.substr(0, abstract.find_last_not_of('.') + 1));
    page.section("SYNOPSIS");
    page.synopsis(fmt::format("{}", fmt::join(path, " ")), usage(command));
    page.section("DESCRIPTION");
    page.paragraph(abstract);
    if (const std::string more = text(command, "discussion"); !more.empty()) page.paragraph(more);
    addSubcommands(page, command);
    addArguments(page, command, true);
    addArguments(page, command, false);
    FooterWriter(page).write(footerOf(root_, path));
    addExitStatus(page);
    if (path.size() == 1) {
      addFiles(page);
      addEnvironment(page);
    }
    addSeeAlso(page, command);
    return page.take();
  }

  const ArgumentParser::CommandType& root_;
  std::string program_;
  std::string date_;
};

}  // namespace

std::string ManualPage::path() const {
  return fmt::format("man{0}/{1}.{0}", section, name);
}

std::vector<ManualPage> manualPages(const ArgumentParser::CommandType& root,
                                    const Release& release) {
  const auto dump = parseJSON(ArgumentParser::dumpHelp({root}));
  Manual manual(root, release);
  manual.add(dump.as_object().at("command").as_object());
  return std::move(manual.pages);
}

}  // namespace tavi::manual
