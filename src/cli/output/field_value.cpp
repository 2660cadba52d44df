#include "cli/output/field_value.h"

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
