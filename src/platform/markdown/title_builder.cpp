#include "platform/markdown/title_builder.h"

#include <algorithm>

#include "platform/markdown/ascii.h"
#include "platform/markdown/entities.h"
#include "platform/markdown/hashtag_grammar.h"
#include "platform/text/utf8.h"

namespace zephyrdown {
namespace {

/// Trims the text, and replaces control characters, which a title cannot show, by blanks.
std::string plainLine(std::string_view text) {
  std::string line(platform::text::trimmingWhitespaceAndNewlines(text));
  std::replace_if(
      line.begin(), line.end(), [](char c) { return byteOf(c) < ' '; }, ' ');
  return line;
}

bool holdsOnlyHashtags(std::string_view line) {
  std::vector<HashtagMention> tags;
  findHashtags(line, {0, line.size()}, /*opens=*/true, tags);
  std::size_t end = 0;
  for (const HashtagMention& tag : tags) {
    if (line.substr(end, tag.range.begin - end).find_first_not_of(' ') != std::string_view::npos) {
      return false;
    }
    end = tag.range.end;
  }
  return end == line.size();
}

}  // namespace

void TitleBuilder::enterHeading() {
  endLine();
  inHeading_ = !hasHeading_;
}

void TitleBuilder::leaveHeading() {
  if (!inHeading_) return;
  heading_ = plainLine(current_);
  hasHeading_ = !heading_.empty();
  current_.clear();
  inHeading_ = false;
}

void TitleBuilder::append(std::string_view text) {
  if (isOpen()) current_.append(text);
}

void TitleBuilder::appendHTML(std::string_view text) {
  if (!isOpen()) return;
  for (const char c : text) {
    if (c == '<') inTag_ = true;
    if (!inTag_) current_ += c;
    if (c == '>') inTag_ = false;
  }
}

void TitleBuilder::appendEntity(std::string_view entity) {
  if (isOpen()) zephyrdown::appendEntity(current_, entity);
}

void TitleBuilder::endLine() {
  if (!isOpen()) return;
  if (inHeading_) {
    current_ += ' ';
    return;
  }
  std::string line = plainLine(current_);
  current_.clear();
  if (line.empty()) return;
  if (!holdsOnlyHashtags(line)) {
    line_ = std::move(line);
  } else if (tagLine_.empty()) {
    tagLine_ = std::move(line);
  }
}

std::string TitleBuilder::title() const {
  if (hasHeading_) return heading_;
  return line_.empty() ? tagLine_ : line_;
}

}  // namespace zephyrdown
