#include "ArgumentParser/level_parser.h"

#include <algorithm>

namespace ArgumentParser {

namespace {

using Element = SplitArguments::Element;
using Kind = Element::Kind;

class LevelParser {
 public:
  LevelParser(const ArgumentSet& arguments, const Names& flagsElsewhere, SplitArguments& line)
      : definitions_(arguments.definitions()),
        arguments_(arguments),
        flagsElsewhere_(flagsElsewhere),
        line_(line),
        isGiven_(definitions_.size()) {}

  void parseOptions();
  void parsePositionals();
  std::optional<std::size_t> firstMissing() const;

 private:
  void parseOption(Element& element, const ArgumentDefinition& definition);
  bool followsKnownLetters(const Element& element, std::span<const Element> group) const;
  std::string_view valueOf(const Element& option, const ArgumentDefinition& definition);
  [[noreturn]] void failWithoutValue(const Element& option);
  void store(const ArgumentDefinition& definition, const Name* name, std::string_view value);
  std::size_t indexOf(const ArgumentDefinition& definition) const {
    return static_cast<std::size_t>(&definition - definitions_.data());
  }

  const std::vector<ArgumentDefinition>& definitions_;
  const ArgumentSet& arguments_;
  const Names& flagsElsewhere_;
  SplitArguments& line_;
  std::vector<bool> isGiven_;
};

void LevelParser::parseOptions() {
  for (Element& element : line_.elements()) {
    if (element.kind == Kind::terminator) return;
    if (element.kind != Kind::option || element.isUsed) continue;
    if (const ArgumentDefinition* definition = arguments_.find(element.name))
      parseOption(element, *definition);
  }
}

void LevelParser::parseOption(Element& element, const ArgumentDefinition& definition) {
  const auto group = line_.elementsAt(element.position);
  if (!definition.isFlag() && !followsKnownLetters(element, group)) return;
  // Splitting kept both readings of "-abc", one option or one per letter; this decides between
  // them.
  group.front().isUsed = true;
  element.isUsed = true;
  if (&element == &group.front()) line_.useToken(element.position);
  if (!definition.isFlag()) {
    store(definition, &element.name, valueOf(element, definition));
  } else if (element.value) {
    throw ParserError(UnexpectedValueForOption{element.name, std::string(*element.value)});
  } else {
    store(definition, &element.name, {});
  }
}

/// Whether all letters before this one in its group are known. If not, the group is an unknown
/// option as a whole, and its letters take no values.
bool LevelParser::followsKnownLetters(const Element& element,
                                      std::span<const Element> group) const {
  if (group.size() == 1 || &element == &group.front()) return true;
  const auto letters = group.subspan(1, static_cast<std::size_t>(&element - &group.front()) - 1);
  return std::ranges::all_of(letters, [this](const Element& letter) {
    return letter.isUsed || arguments_.find(letter.name) ||
           std::ranges::count(flagsElsewhere_, letter.name) > 0;
  });
}

/// The next token is the value of the option right before it: in "-ab x", of "-b".
std::string_view LevelParser::valueOf(const Element& option, const ArgumentDefinition& definition) {
  if (option.value) return *option.value;
  const std::size_t next = option.position + 1;
  const bool isLast = &option == &line_.elementsAt(option.position).back() ||
                      option.name.kind != Name::Kind::shortName;
  if (!isLast || !line_.hasToken(next)) failWithoutValue(option);
  if (definition.parsingStrategy == ParsingStrategy::standard) {
    const Element& value = line_.elementsAt(next).front();
    if (value.kind != Kind::value || value.isUsed) failWithoutValue(option);
  }
  line_.useToken(next);
  return line_.token(next);
}

void LevelParser::failWithoutValue(const Element& option) {
  const Element& whole = line_.elementsAt(option.position).front();
  if (&whole == &option) throw ParserError(MissingValueForOption{option.name});
  throw ParserError(MissingValueOrUnknownCompositeOption{option.name, whole.name});
}

void LevelParser::store(const ArgumentDefinition& definition, const Name* name,
                        std::string_view value) {
  isGiven_[indexOf(definition)] = true;
  UnableToParseValue error{{}, std::string(value), indexOf(definition), {}};
  try {
    if (definition.update(value)) return;
  } catch (const std::exception& reason) {
    error.reason = reason.what();
  }
  if (name) error.name = *name;
  throw ParserError(std::move(error));
}

void LevelParser::parsePositionals() {
  auto value = line_.elements().begin();
  const auto end = line_.elements().end();
  const auto toNextValue = [&] {
    value = std::find_if(value, end, [](const Element& element) {
      return element.kind == Kind::value && !element.isUsed;
    });
    return value != end;
  };
  for (const ArgumentDefinition& definition : definitions_) {
    if (!definition.isPositional()) continue;
    do {
      if (!toNextValue()) return;
      value->isUsed = true;
      store(definition, nullptr, line_.token(value->position));
    } while (definition.isRepeating);
  }
}

std::optional<std::size_t> LevelParser::firstMissing() const {
  for (std::size_t i = 0; i < definitions_.size(); ++i)
    if (!definitions_[i].isOptional && !isGiven_[i]) return i;
  return {};
}

}  // namespace

std::optional<std::size_t> parseLevel(const ArgumentSet& arguments, const Names& flagsElsewhere,
                                      SplitArguments& line) {
  LevelParser parser(arguments, flagsElsewhere, line);
  parser.parseOptions();
  parser.parsePositionals();
  return parser.firstMissing();
}

}  // namespace ArgumentParser
