#include "ArgumentParser/name.h"

#include <algorithm>

namespace ArgumentParser {

Name Name::parse(std::string_view written) {
  if (written.starts_with("--")) return {Kind::longName, std::string(written.substr(2))};
  const std::string_view text = written.substr(written.starts_with('-') ? 1 : 0);
  return {text.size() == 1 ? Kind::shortName : Kind::longWithSingleDash, std::string(text)};
}

std::string Name::written() const {
  return (kind == Kind::longName ? "--" : "-") + text;
}

Names::Names(const char* written) {
  push_back(Name::parse(written));
}

Names::Names(std::initializer_list<std::string_view> written) {
  reserve(written.size());
  for (const std::string_view name : written) push_back(Name::parse(name));
}

const Name* Names::preferred() const {
  if (empty()) return nullptr;
  const auto isLong = [](const Name& name) { return name.kind != Name::Kind::shortName; };
  const auto found = std::ranges::find_if(*this, isLong);
  return found != end() ? &*found : &front();
}

}  // namespace ArgumentParser
