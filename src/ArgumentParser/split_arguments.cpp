#include "ArgumentParser/split_arguments.h"

#include <algorithm>

#include "ArgumentParser/characters.h"

namespace ArgumentParser {

namespace {

using Element = SplitArguments::Element;
using Kind = Element::Kind;

bool isSingleCharacter(std::string_view text) {
  return !text.empty() && firstCharacter(text).size() == text.size();
}

std::string_view nameWithin(std::string_view option) {
  return option.substr(0, option.find('='));
}

}  // namespace

bool isShortName(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  const bool isLetter = (first | 0x20) >= 'a' && (first | 0x20) <= 'z';
  return isLetter || (first >= '0' && first <= '9') || first >= 0x80;
}

ParserError malformation(std::string_view token) {
  const std::string_view behindDash = token.substr(1);
  if (isSingleCharacter(behindDash)) return NonAlphanumericShortOption{std::string(behindDash)};
  const std::string_view name = nameWithin(behindDash);
  if (isSingleCharacter(name) && name != "-") return NonAlphanumericShortOption{std::string(name)};
  return InvalidOption{std::string(token)};
}

SplitArguments::SplitArguments(const std::vector<std::string>& tokens) : tokens_(tokens) {
  elements_.reserve(tokens.size());
  firstElement_.reserve(tokens.size());
  bool isBehindTerminator = false;
  for (std::size_t position = 0; position < tokens.size(); ++position) {
    firstElement_.push_back(elements_.size());
    if (isBehindTerminator) {
      elements_.push_back({.kind = Kind::value, .position = position});
      continue;
    }
    split(position);
    isBehindTerminator = elements_.back().kind == Kind::terminator;
    if (elements_.back().kind == Kind::malformed && !standsBehindOption(position))
      throw malformation(tokens[position]);
  }
}

void SplitArguments::split(std::size_t position) {
  const std::string_view token = tokens_[position];
  const std::size_t dashes = std::min(token.find_first_not_of('-'), token.size());
  if (dashes == 0 || token == "-") {
    elements_.push_back({.kind = Kind::value, .position = position});
  } else if (token == "--") {
    elements_.push_back({.kind = Kind::terminator, .position = position});
  } else if (dashes > 2 || nameWithin(token.substr(dashes)).empty()) {
    elements_.push_back({.kind = Kind::malformed, .position = position});
  } else {
    splitOption(position, dashes);
  }
}

void SplitArguments::splitOption(std::size_t position, std::size_t dashes) {
  const std::string_view text = std::string_view(tokens_[position]).substr(dashes);
  const std::string_view name = nameWithin(text);
  Element option{.kind = Kind::option, .position = position};
  option.name = {Name::Kind::longName, std::string(name)};
  if (name.size() < text.size()) option.value = text.substr(name.size() + 1);
  if (dashes == 2) {
    elements_.push_back(option);
    return;
  }
  const bool isSingle = isSingleCharacter(name);
  option.name.kind = isSingle ? Name::Kind::shortName : Name::Kind::longWithSingleDash;
  if (isSingle && !isShortName(name)) option.kind = Kind::malformed;
  elements_.push_back(option);
  if (isSingle || option.value) return;
  for (const std::string_view character : characters(name)) {
    option.name = {Name::Kind::shortName, std::string(character)};
    elements_.push_back(option);
  }
}

bool SplitArguments::standsBehindOption(std::size_t position) const {
  if (position == 0) return false;
  const Element& before = elements_[firstElement_[position] - 1];
  return before.kind == Kind::option && !before.value;
}

std::span<Element> SplitArguments::elementsAt(std::size_t position) {
  const std::size_t begin = firstElement_[position];
  const std::size_t end = hasToken(position + 1) ? firstElement_[position + 1] : elements_.size();
  return std::span(elements_).subspan(begin, end - begin);
}

void SplitArguments::useToken(std::size_t position) {
  for (Element& element : elementsAt(position)) element.isUsed = true;
}

const Element* SplitArguments::firstUnused() const {
  const auto found = std::ranges::find(elements_, false, &Element::isUsed);
  return found != elements_.end() ? &*found : nullptr;
}

std::vector<const Element*> SplitArguments::unused() const {
  std::vector<const Element*> result;
  for (const Element& element : elements_)
    if (!element.isUsed && element.kind != Kind::terminator) result.push_back(&element);
  return result;
}

}  // namespace ArgumentParser
