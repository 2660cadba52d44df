#include "cli/output/field_value.h"

#include <algorithm>
#include <cstring>

#include "domain/tag_parser.h"
#include "operations/pin_operations.h"

namespace tavi {
namespace {

/// The cached form of `text`; `make` computes it the first time.
template <class Forms, class Make>
const std::optional<std::string>& form(Forms& forms, const std::string& text, const Make& make) {
  const auto found = forms.find(text);
  return found != forms.end() ? found->second : forms.emplace(text, make(text)).first->second;
}

}  // namespace

std::size_t FieldContext::Hash::operator()(const std::string& text) const noexcept {
  std::uint64_t last = 0;
  const std::size_t read = std::min(text.size(), sizeof last);
  std::memcpy(&last, text.data() + text.size() - read, read);
  return (last ^ text.size()) * 0x9E3779B97F4A7C15 >> 32;  // Fibonacci hashing
}

TextList FieldContext::list(const std::vector<std::string>& texts) {
  list_.assign(texts.begin(), texts.end());
  return list_;
}

TextList FieldContext::writtenTags(const std::vector<std::string>& names) {
  list_.clear();
  for (const std::string& name : names) {
    if (const auto& written = form(tags_, name, TagParser::writtenForm)) list_.push_back(*written);
  }
  return list_;
}

TextList FieldContext::displayedPins(const std::vector<std::string>& pins) {
  list_.clear();
  for (const std::string& pin : pins) list_.push_back(*form(pins_, pin, displayedPin));
  return list_;
}

}  // namespace tavi
