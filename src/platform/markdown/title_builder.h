#pragma once

#include <string>
#include <string_view>

namespace zephyrdown {

/// Derives a note's title while its text is parsed: the plain text of the first heading with text,
/// otherwise of the first line with more than hashtags, otherwise of the first line.
class TitleBuilder {
 public:
  /// Whether more text can still change the title.
  bool isOpen() const { return !hasHeading_ && (inHeading_ || line_.empty()); }

  void enterHeading();
  void leaveHeading();
  void append(std::string_view text);
  /// Appends the text of an HTML block without its tags.
  void appendHTML(std::string_view text);
  void appendEntity(std::string_view entity);
  /// Reports the end of a line or block.
  void endLine();

  /// Whether there was a heading with text, and whether there was a line that can be the title.
  bool hasHeading() const { return hasHeading_; }
  bool hasLine() const { return !line_.empty(); }

  std::string title() const;

 private:
  std::string current_;  // of the current line or heading
  std::string heading_, line_, tagLine_;
  bool inHeading_ = false;
  bool hasHeading_ = false;
  bool inTag_ = false;
};

}  // namespace zephyrdown
