#include "ArgumentParser/argument_definition.h"

namespace ArgumentParser {

namespace {

std::string quotedValueName(const ArgumentDefinition& definition) {
  return "<" + definition.valueName + ">";
}

void appendNames(std::string& label, const Names& names, bool isShort) {
  for (const Name& name : names) {
    if ((name.kind == Name::Kind::shortName) != isShort) continue;
    if (!label.empty()) label += ", ";
    label += name.written();
  }
}

}  // namespace

CompletionKind ArgumentDefinition::completionKind() const {
  if (!std::holds_alternative<NoCompletion>(completion) || allValueStrings.empty())
    return completion;
  return CompletionList{allValueStrings};
}

std::string ArgumentDefinition::form() const {
  if (isPositional()) return quotedValueName(*this);
  const std::string name = names.preferred()->written();
  return isFlag() ? name : name + " " + quotedValueName(*this);
}

std::string ArgumentDefinition::synopsis() const {
  const std::string text = isRepeating ? form() + " ..." : form();
  return isOptional ? "[" + text + "]" : text;
}

std::string ArgumentDefinition::label() const {
  if (isPositional()) return quotedValueName(*this);
  std::string label;
  appendNames(label, names, true);
  appendNames(label, names, false);
  return isFlag() ? label : label + " " + quotedValueName(*this);
}

}  // namespace ArgumentParser
