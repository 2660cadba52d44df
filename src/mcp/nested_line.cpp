#include "mcp/nested_line.h"

#include <algorithm>

namespace tavi::mcp {
namespace {

/// Steps over JSON tokens without building values, so the depth of nesting does not matter.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  /// Steps over the byte if it is the next token; false if it is not.
  bool take(char byte) {
    skipBlanks();
    if (at_ == text_.size() || text_[at_] != byte) return false;
    ++at_;
    return true;
  }

  /// Steps over a value and returns its text; empty if there is none or it is incomplete.
  std::string_view value() {
    skipBlanks();
    const std::size_t begin = at_;
    std::size_t depth = 0;
    while (at_ < text_.size()) {
      const char byte = text_[at_];
      if (depth == 0 && (byte == ',' || byte == '}' || byte == ']')) break;
      ++at_;
      if (byte == '"' && !skipString()) return {};
      if (byte == '{' || byte == '[') ++depth;
      if (byte == '}' || byte == ']') --depth;
      if (depth == 0 && (byte == '"' || byte == '}' || byte == ']')) break;
    }
    return depth == 0 ? text_.substr(begin, at_ - begin) : std::string_view();
  }

 private:
  void skipBlanks() { at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size()); }

  /// Steps from after a string's opening quote to after its closing quote. False if there is none.
  bool skipString() {
    while ((at_ = text_.find_first_of("\"\\", at_)) != std::string_view::npos) {
      if (text_[at_] == '"') return ++at_, true;
      at_ = std::min(at_ + 2, text_.size());
    }
    at_ = text_.size();
    return false;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

std::optional<std::string_view> writtenID(std::string_view object) {
  Scanner scanner(object);
  if (!scanner.take('{')) return {};
  std::optional<std::string_view> id;
  do {
    const std::string_view key = scanner.value();
    if (!key.starts_with('"') || !scanner.take(':')) return id;
    const std::string_view value = scanner.value();
    if (value.empty()) return id;
    if (key == "\"id\"") id = value;
  } while (scanner.take(','));
  return id;
}

}  // namespace tavi::mcp
