#pragma once

#include <string>
#include <string_view>

namespace tavi::manual {

/// The header and footer of a manual page.
struct PageTitle {
  std::string_view name;     ///< "tavicli-list"
  int section = 1;           ///< 1: user commands; 7: conventions, languages and the like
  std::string_view date;     ///< "2026-11-25", of the release
  std::string_view program;  ///< "tavicli 1.0.0 (1)"
};

/// Builds a manual page with the macros of man(7). Parameters named `markup`, `label` and
/// `arguments` are roff; all others are plain UTF-8, which is escaped. The result is ASCII.
class Roff {
 public:
  explicit Roff(const PageTitle& title);

  /// The NAME section, which whatis(1) and apropos(1) read. Uses as few escapes as possible, since
  /// not all of them decode escapes.
  void name(std::string_view name, std::string_view abstract);
  void section(std::string_view title);
  void paragraph(std::string_view text);
  /// A label and a text indented below it.
  void item(std::string_view label, std::string_view text);
  /// Lines that keep their line breaks and blanks.
  void verbatim(std::string_view lines);
  /// A usage line: the command, and arguments that wrap to its right.
  void synopsis(std::string_view command, std::string_view arguments);
  /// Adds markup to the current paragraph, broken into lines at blanks.
  void line(std::string_view markup);

  std::string take() { return std::move(page_); }

  static std::string escaped(std::string_view text);
  static std::string bold(std::string_view text) { return "\\fB" + escaped(text) + "\\fR"; }
  static std::string italic(std::string_view text) { return "\\fI" + escaped(text) + "\\fR"; }
  /// A path in italics; roff may break the line after each slash.
  static std::string file(std::string_view path);

 private:
  void beginParagraph();
  void oneLine(std::string_view markup);
  void verbatimLine(std::string_view text);

  std::string page_;
  bool afterHeading_ = false;
};

}  // namespace tavi::manual
