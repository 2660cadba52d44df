#include <typeinfo>

#include "ArgumentParser/command_line.h"
#include "ArgumentParser/option_values.h"
#include "ArgumentParser/parser_error.h"
#include "ArgumentParser/split_arguments.h"
#include "shelf.h"
#include "support/fuzzing.h"

// Fuzzes the parser with lines of tokens, separated by NUL. The elements of a token must add up to
// the token again; parsing a line must give a command or a CommandError with a message, and the
// same result each time.

namespace {

using namespace ArgumentParser;
using support::require;
using Element = SplitArguments::Element;

std::vector<std::string> tokensOf(std::string_view bytes) {
  std::vector<std::string> tokens;
  while (!bytes.empty()) {
    const std::size_t end = std::min(bytes.find('\0'), bytes.size());
    tokens.emplace_back(bytes.substr(0, end));
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
  }
  return tokens;
}

std::string joined(const std::string& dashes, std::string_view name, const Element& element) {
  std::string text = dashes + std::string(name);
  if (element.value) text.append("=").append(*element.value);
  return text;
}

void checkElements(const std::string& token, std::span<const Element> elements) {
  require(!elements.empty());
  const Element& whole = elements.front();
  if (whole.kind != Element::Kind::option) {
    require(elements.size() == 1);
    require(whole.kind != Element::Kind::terminator || token == "--");
    return;
  }
  const bool isLong = whole.name.kind == Name::Kind::longName;
  require(joined(isLong ? "--" : "-", whole.name.text, whole) == token);
  if (elements.size() == 1) return;
  std::string letters;
  for (const Element& element : elements.subspan(1)) letters += element.name.text;
  require(letters == whole.name.text);
}

void checkSplit(const std::vector<std::string>& tokens) {
  try {
    SplitArguments line(tokens, unconditionalValues(commandType<shelf::Shelf>(), tokens));
    std::size_t count = 0;
    for (std::size_t position = 0; position < tokens.size(); ++position) {
      const auto elements = line.elementsAt(position);
      checkElements(tokens[position], elements);
      for (const Element& element : elements) require(element.position == position);
      count += elements.size();
    }
    require(line.elements().size() == count);
  } catch (const ParserError&) {
  }
}

/// The command's type, or the message of the error.
std::string outcome(const std::vector<std::string>& tokens) {
  const CommandType root = commandType<shelf::Shelf>();
  try {
    const auto command = parseAsRoot(root, tokens);
    const ParsableCommand& parsed = *command;
    return typeid(parsed).name();
  } catch (const CommandError&) {
    const std::exception_ptr error = std::current_exception();
    const int code = exitCode(root, error);
    require(code == 0 || code == 64 || code == 1);
    return fullMessage(root, error, 80);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> tokens = tokensOf(support::fuzzed(data, size));
  checkSplit(tokens);
  require(outcome(tokens) == outcome(tokens));
  return 0;
}
