#include "mcp/nested_line.h"

#include <algorithm>

namespace tavi::mcp {
namespace {

/// Walks over the tokens of JSON without keeping track of what they build.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  /// Whether the byte comes next; steps over it.
  bool take(char byte) {
    skipBlanks();
    if (at_ == text_.size() || text_[at_] != byte) return false;
    ++at_;
    return true;
  }

  /// A value, whole, as it is written; empty where there is none or it does not end.
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

  /// From after a string's opening quote to after its closing one. False where it does not end.
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
