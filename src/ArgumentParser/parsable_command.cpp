#include "ArgumentParser/parsable_command.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>

namespace ArgumentParser {

namespace {

bool isUpper(char c) {
  return c >= 'A' && c <= 'Z';
}

/// `tool::AddMark` becomes "add-mark", `ReadURLCommand` "read-url-command".
std::string nameFromType(const std::type_info& type) {
  const std::unique_ptr<char, decltype(&std::free)> demangled(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr), &std::free);
  std::string_view text = demangled ? demangled.get() : type.name();
  if (const auto scope = text.rfind("::"); scope != text.npos) text.remove_prefix(scope + 2);
  std::string name;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool endsWord = i > 0 && !isUpper(text[i - 1]);
    const bool startsWord = i + 1 < text.size() && !isUpper(text[i + 1]);
    if (i > 0 && isUpper(text[i]) && (endsWord || startsWord)) name += '-';
    name += isUpper(text[i]) ? static_cast<char>(text[i] - 'A' + 'a') : text[i];
  }
  return name;
}

}  // namespace

CommandConfiguration CommandType::configuration() const {
  CommandConfiguration result = configure_();
  if (result.commandName.empty()) result.commandName = nameFromType(*type_);
  return result;
}

std::unique_ptr<ParsableCommand> CommandType::make() const {
  return make_();
}

bool CommandConfiguration::answersTo(std::string_view name) const {
  return name == commandName || std::ranges::find(aliases, name) != aliases.end();
}

void ParsableCommand::run() {
  throw CleanExit::helpRequest(*this);
}

CleanExit CleanExit::helpRequest(const ParsableCommand& command) {
  return CleanExit(std::type_index(typeid(command)));
}

}  // namespace ArgumentParser
