#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ArgumentParser/argument_definition.h"
#include "ArgumentParser/argument_value.h"

namespace ArgumentParser {

class ParsableArguments;

/// Sets the details of the argument that was just declared. It refers to an element of the set's
/// vector, so the next declaration invalidates it: chain the calls and do not keep it.
class Declaration {
 public:
  explicit Declaration(ArgumentDefinition& definition) : definition_(definition) {}

  Declaration& help(std::string_view abstract);
  Declaration& discussion(std::string_view text);
  /// The option takes the next token as its value even if it looks like an option.
  Declaration& takesAnything();
  /// The argument must be given; the variable's initial value is not a default.
  Declaration& required();
  /// Leaves the argument out of help and completions.
  Declaration& hidden();
  /// Replaces the value name that was derived from the declaration.
  Declaration& valueName(std::string_view name);

  Declaration& completes(CompletionKind kind);
  Declaration& completes(std::initializer_list<std::string_view> values);
  Declaration& completes(CandidateFunction candidates);

 private:
  ArgumentDefinition& definition_;
};

/// The declared arguments of a command, in the order of its help page. Each is bound to a variable,
/// which receives the value and must outlive the set. The variable's type decides how often the
/// argument may be given:
///
///   std::optional<T>      may be absent, without a default
///   T                     has a default, the variable's initial value
///   std::vector<T>        may be repeated: each occurrence of an option appends a value, and a
///                         positional takes all remaining values
///
/// where T is std::string, an integer type, or an enumeration with `argumentValues`.
class ArgumentSet {
 public:
  template <class T>
  Declaration argument(T& variable, std::string_view valueName);
  template <class T>
  Declaration option(T& variable, Names names);
  Declaration flag(bool& variable, Names names);

  /// Declares the arguments of a group here, as if they were the command's own. `title`: the help
  /// section that lists them; empty for the usual one.
  void group(ParsableArguments& arguments, std::string_view title = {});

  const std::vector<ArgumentDefinition>& definitions() const { return definitions_; }
  const std::vector<ParsableArguments*>& groups() const { return groups_; }
  /// The option or flag with this name; null if there is none.
  const ArgumentDefinition* find(const Name& name) const;

 private:
  template <class T>
  Declaration bind(T& variable, ArgumentDefinition definition);
  Declaration add(ArgumentDefinition definition);

  std::vector<ArgumentDefinition> definitions_;
  std::vector<ParsableArguments*> groups_;
  std::string sectionTitle_;
};

template <class T>
Declaration ArgumentSet::argument(T& variable, std::string_view valueName) {
  ArgumentDefinition definition;
  definition.valueName = valueName;
  return bind(variable, std::move(definition));
}

template <class T>
Declaration ArgumentSet::option(T& variable, Names names) {
  ArgumentDefinition definition;
  definition.kind = ArgumentDefinition::Kind::option;
  if (const Name* name = names.preferred()) definition.valueName = name->text;
  definition.names = std::move(names);
  return bind(variable, std::move(definition));
}

template <class T>
Declaration ArgumentSet::bind(T& variable, ArgumentDefinition definition) {
  static_assert(!std::is_same_v<T, bool>, "a truth value is a flag");
  using Value = typename Held<T>::Type;
  definition.isRepeating = Held<T>::isList;
  if (const Value* initial = Held<T>::initial(variable))
    definition.defaultValue = describeValue(*initial);
  if constexpr (EnumeratedValue<Value>)
    for (const auto& [written, value] : argumentValues(Value{}))
      definition.allValueStrings.emplace_back(written);
  definition.update = [&variable](std::string_view text) {
    auto value = parseValue(text, Value{});
    if (!value) return false;
    if constexpr (Held<T>::isList) {
      variable.push_back(*std::move(value));
    } else {
      variable = *std::move(value);
    }
    return true;
  };
  return add(std::move(definition));
}

}  // namespace ArgumentParser
