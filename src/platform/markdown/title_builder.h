#pragma once

#include <string>
#include <string_view>

namespace zephyrdown {

/// Derives a note's title while its text is read: the plain text of the first heading that holds
/// any, else of the first line that holds more than hashtags, else of the first line at all.
class TitleBuilder {
 public:
  /// Whether text still matters.
  bool isOpen() const { return !hasHeading_ && (inHeading_ || line_.empty()); }

  void enterHeading();
  void leaveHeading();
  void append(std::string_view text);
  /// Text of an HTML block: only what stands between its tags.
  void appendHTML(std::string_view text);
  void appendEntity(std::string_view entity);
  /// A line's or block's end.
  void endLine();

  /// Whether a heading that holds text was read, or a line that may be the title without one.
  bool hasHeading() const { return hasHeading_; }
  bool hasLine() const { return !line_.empty(); }

  std::string title() const;

 private:
  std::string current_;  // of the line, or heading, at hand
  std::string heading_, line_, tagLine_;
  bool inHeading_ = false;
  bool hasHeading_ = false;
  bool inTag_ = false;
};

}  // namespace zephyrdown
