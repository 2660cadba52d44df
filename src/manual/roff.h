#pragma once

#include <string>
#include <string_view>

namespace tavi::manual {

/// What stands at the head and the foot of a manual page.
struct PageTitle {
  std::string_view name;     ///< "tavicli-list"
  int section = 1;           ///< 1: user commands; 7: conventions, languages and the like
  std::string_view date;     ///< "2026-11-25", of the release
  std::string_view program;  ///< "tavicli 1.0.0 (1)"
};

/// A manual page in the macros of man(7), made piece by piece. Texts go in as they are to be read:
/// nothing in them is markup, and what comes out is ASCII.
class Roff {
 public:
  explicit Roff(const PageTitle& title);

  /// The section from which whatis(1) and apropos(1) take their line: without an escape in it,
  /// where the text allows that, since not all of them know what it stands for.
  void name(std::string_view name, std::string_view abstract);
  void section(std::string_view title);
  void paragraph(std::string_view text);
  /// A label, which is markup, and a text indented below it.
  void item(std::string_view label, std::string_view text);
  /// Lines that keep their breaks and blanks.
  void verbatim(std::string_view lines);
  /// A usage line: the command, and markup that wraps beside it.
  void synopsis(std::string_view command, std::string_view arguments);
  /// Markup in the paragraph that is open, broken into lines at its blanks.
  void line(std::string_view markup);

  std::string take() { return std::move(page_); }

  static std::string escaped(std::string_view text);
  static std::string bold(std::string_view text) { return "\\fB" + escaped(text) + "\\fR"; }
  static std::string italic(std::string_view text) { return "\\fI" + escaped(text) + "\\fR"; }
  /// In italics; a line may end behind each slash.
  static std::string file(std::string_view path);

 private:
  void beginParagraph();
  void oneLine(std::string_view markup);
  void verbatimLine(std::string_view text);

  std::string page_;
  bool afterHeading_ = false;
};

}  // namespace tavi::manual
