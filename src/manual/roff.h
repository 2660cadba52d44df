#pragma once

#include <string>
#include <string_view>

namespace tavi::manual {

/// A manual page in the macros of man(7), made piece by piece. Texts go in as they are to be read:
/// nothing in them is markup, and what comes out is ASCII.
class Roff {
 public:
  /// `name`: "tavicli-list", of the section of user commands. `version`: at the foot of the page.
  Roff(std::string_view name, std::string_view version);

  void section(std::string_view title);
  void paragraph(std::string_view text);
  /// A label, which is markup, and a text indented below it.
  void item(std::string_view label, std::string_view text);
  /// Lines that keep their breaks and blanks.
  void verbatim(std::string_view lines);
  /// A usage line: the command, and markup that wraps beside it.
  void synopsis(std::string_view command, std::string_view arguments);
  /// A line of markup in the paragraph that is open.
  void line(std::string_view markup);

  std::string take() { return std::move(page_); }

  static std::string escaped(std::string_view text);
  static std::string bold(std::string_view text) { return "\\fB" + escaped(text) + "\\fR"; }
  static std::string italic(std::string_view text) { return "\\fI" + escaped(text) + "\\fR"; }

 private:
  std::string page_;
};

}  // namespace tavi::manual
