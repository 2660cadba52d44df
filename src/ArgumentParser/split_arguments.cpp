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

/// A letter or digit followed by one character that is neither: "-n?".
bool isLetterWithSign(std::string_view group) {
  const std::string_view letter = firstCharacter(group);
  const std::string_view sign = group.substr(letter.size());
  return isShortName(letter) && isSingleCharacter(sign) && !isShortName(sign) && sign != "=";
}

/// Classifies a token by its spelling alone. Throws a ParserError if it is malformed.
Kind classify(std::string_view token) {
  const std::size_t dashes = std::min(token.find_first_not_of('-'), token.size());
  if (dashes == 0 || token == "-") return Kind::value;
  if (token == "--") return Kind::terminator;
  const std::string_view text = token.substr(dashes);
  const std::string_view name = nameWithin(text);
  if (dashes > 2 || name.empty()) throw ParserError(InvalidOption{std::string(token)});
  if (dashes == 2) return Kind::option;
  if (isSingleCharacter(name) && !isShortName(name))
    throw ParserError(NonAlphanumericShortOption{std::string(name), false});
  if (isLetterWithSign(text))
    throw ParserError(
        NonAlphanumericShortOption{std::string(text.substr(firstCharacter(text).size())), true});
  return Kind::option;
}

}  // namespace

bool isShortName(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  const bool isLetter = (first | 0x20) >= 'a' && (first | 0x20) <= 'z';
  return isLetter || (first >= '0' && first <= '9') || first >= 0x80;
}

SplitArguments::SplitArguments(const std::vector<std::string>& tokens,
                               const std::vector<bool>& isOptionValue)
    : tokens_(tokens) {
  elements_.reserve(tokens.size());
  firstElement_.reserve(tokens.size());
  bool isTerminated = false;
  for (std::size_t position = 0; position < tokens.size(); ++position) {
    firstElement_.push_back(elements_.size());
    const Kind kind = isTerminated              ? Kind::value
                      : isOptionValue[position] ? Kind::optionValue
                                                : classify(tokens[position]);
    isTerminated = isTerminated || kind == Kind::terminator;
    if (kind == Kind::option) {
      splitOption(position);
    } else {
      elements_.push_back({.kind = kind, .position = position});
    }
  }
}

void SplitArguments::splitOption(std::size_t position) {
  const std::string_view token = tokens_[position];
  const bool isLong = token.starts_with("--");
  const std::string_view text = token.substr(isLong ? 2 : 1);
  const std::string_view name = nameWithin(text);
  Element option{.kind = Kind::option, .position = position};
  option.name = {Name::Kind::longName, std::string(name)};
  if (name.size() < text.size()) option.value = text.substr(name.size() + 1);
  const bool isSingle = !isLong && isSingleCharacter(name);
  if (!isLong) option.name.kind = isSingle ? Name::Kind::shortName : Name::Kind::longWithSingleDash;
  elements_.push_back(option);
  if (isLong || isSingle || option.value) return;
  for (const std::string_view character : characters(name)) {
    option.name = {Name::Kind::shortName, std::string(character)};
    elements_.push_back(option);
  }
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
