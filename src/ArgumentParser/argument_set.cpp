#include "ArgumentParser/argument_set.h"

#include <algorithm>

#include "ArgumentParser/parsable_command.h"

namespace ArgumentParser {

Declaration& Declaration::help(std::string_view abstract) {
  definition_.abstract = abstract;
  return *this;
}

Declaration& Declaration::discussion(std::string_view text) {
  definition_.discussion = text;
  return *this;
}

Declaration& Declaration::takesAnything() {
  definition_.parsingStrategy = ParsingStrategy::unconditional;
  return *this;
}

Declaration& Declaration::required() {
  definition_.isOptional = false;
  definition_.defaultValue.clear();
  return *this;
}

Declaration& Declaration::hidden() {
  definition_.isVisible = false;
  return *this;
}

Declaration& Declaration::valueName(std::string_view name) {
  definition_.valueName = name;
  return *this;
}

Declaration& Declaration::completes(CompletionKind kind) {
  definition_.completion = std::move(kind);
  return *this;
}

Declaration& Declaration::completes(std::initializer_list<std::string_view> values) {
  return completes(CompletionList{{values.begin(), values.end()}});
}

Declaration& Declaration::completes(CandidateFunction candidates) {
  return completes(CompletionCustom{std::move(candidates)});
}

Declaration ArgumentSet::flag(bool& variable, Names names) {
  ArgumentDefinition definition;
  definition.kind = ArgumentDefinition::Kind::flag;
  definition.names = std::move(names);
  definition.update = [&variable](std::string_view) { return variable = true; };
  return add(std::move(definition));
}

void ArgumentSet::group(ParsableArguments& arguments, std::string_view title) {
  std::string outer = std::exchange(sectionTitle_, std::string(title));
  arguments.declare(*this);
  sectionTitle_ = std::move(outer);
  groups_.push_back(&arguments);
}

const ArgumentDefinition* ArgumentSet::find(const Name& name) const {
  for (const ArgumentDefinition& definition : definitions_)
    if (std::ranges::find(definition.names, name) != definition.names.end()) return &definition;
  return nullptr;
}

Declaration ArgumentSet::add(ArgumentDefinition definition) {
  definition.sectionTitle = sectionTitle_;
  return Declaration(definitions_.emplace_back(std::move(definition)));
}

}  // namespace ArgumentParser
