#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ArgumentParser/command_line.h"

/// A small program for the parser's tests: a shelf of books, with every kind of command and
/// argument.
namespace shelf {

using ArgumentParser::ArgumentSet;
using ArgumentParser::CommandConfiguration;
using ArgumentParser::commandType;
using ArgumentParser::ParsableArguments;
using ArgumentParser::ParsableCommand;

enum class Format { tsv, csv, json };
constexpr std::array<std::pair<std::string_view, Format>, 3> argumentValues(Format) {
  return {{{"tsv", Format::tsv}, {"csv", Format::csv}, {"json", Format::json}}};
}

enum class Color { red, blue };
constexpr std::array<std::pair<std::string_view, Color>, 2> argumentValues(Color) {
  return {{{"red", Color::red}, {"blue", Color::blue}}};
}

enum class Size { a1, a2, a3, a4, a5, a6 };
constexpr std::array<std::pair<std::string_view, Size>, 6> argumentValues(Size) {
  return {{{"a1", Size::a1},
           {"a2", Size::a2},
           {"a3", Size::a3},
           {"a4", Size::a4},
           {"a5", Size::a5},
           {"a6", Size::a6}}};
}

struct FormatOptions : ParsableArguments {
  Format format = Format::tsv;
  std::optional<std::string> fields;

  void declare(ArgumentSet& args) override;
};

struct List : ParsableCommand {
  std::string sort = "title";
  std::optional<std::int64_t> limit;
  std::int64_t offset = 0;
  std::string shelf;
  bool count = false;
  FormatOptions formatOptions;

  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override {}
};

struct Edit : ParsableCommand {
  std::optional<std::string> bookID;
  std::optional<std::string> title;
  std::vector<std::string> finds;
  std::vector<std::string> replacements;
  bool all = false;
  bool force = false;

  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override {}
};

struct ListTags : ParsableCommand {
  bool count = false;
  std::optional<std::string> bookID;

  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override {}
};

struct AddTags : ParsableCommand {
  std::optional<std::string> bookID;
  std::vector<std::string> tags;
  std::optional<std::string> note;

  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override {}
};

struct Tags : ParsableCommand {
  static CommandConfiguration configuration();
};

/// A command with required arguments and with a `validate` function.
struct Scan : ParsableCommand {
  std::string page;
  std::vector<std::string> pages;
  std::optional<Color> color;
  std::optional<Size> size;
  std::string printer;
  std::int64_t copies = 1;

  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void validate() override;
  void run() override {}
};

struct Shelf : ParsableCommand {
  bool version = false;

  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
};

inline const ArgumentParser::CommandType kShelf = commandType<Shelf>();

}  // namespace shelf
