#include "ArgumentParser/tool_info.h"

#include <cstdint>
#include <cstdio>
#include <map>
#include <variant>

#include "ArgumentParser/command_tree.h"

namespace ArgumentParser {

namespace {

constexpr int kToolInfoV0 = 0;  // serializationVersion; raise it when fields change

/// A JSON value. Objects keep their keys sorted.
struct Json {
  using List = std::vector<Json>;
  using Object = std::map<std::string, Json>;

  template <class T>
  Json(T content) : value(std::move(content)) {}
  Json(const char* text) : value(std::string(text)) {}

  std::variant<bool, int, std::string, List, Object> value;
};

/// Writes a JSON value (RFC 8259), indented by two spaces.
class Writer {
 public:
  std::string write(const Json& value) {
    std::visit(*this, value.value);
    return std::move(text_);
  }

  void operator()(bool value) { text_ += value ? "true" : "false"; }
  void operator()(int value) { text_ += std::to_string(value); }
  void operator()(const std::string& value);
  void operator()(const Json::List& list) {
    writeItems("[", list, "]", [this](const Json& item) { std::visit(*this, item.value); });
  }
  void operator()(const Json::Object& object) {
    writeItems("{", object, "}", [this](const auto& entry) {
      (*this)(entry.first);
      text_ += ": ";
      std::visit(*this, entry.second.value);
    });
  }

 private:
  template <class Items, class WriteItem>
  void writeItems(const char* open, const Items& items, const char* close, WriteItem writeItem);
  void startLine() { text_.append("\n").append(2 * depth_, ' '); }

  std::string text_;
  std::size_t depth_ = 0;
};

void Writer::operator()(const std::string& value) {
  text_ += '"';
  for (const char c : value) {
    if (c == '"' || c == '\\') {
      text_ += {'\\', c};
    } else if (c == '\n') {
      text_ += "\\n";
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      text_ += escape;
    } else {
      text_ += c;
    }
  }
  text_ += '"';
}

template <class Items, class WriteItem>
void Writer::writeItems(const char* open, const Items& items, const char* close,
                        WriteItem writeItem) {
  text_ += open;
  ++depth_;
  bool isFirst = true;
  for (const auto& item : items) {
    if (!isFirst) text_ += ',';
    isFirst = false;
    startLine();
    writeItem(item);
  }
  --depth_;
  if (!isFirst) startLine();
  text_ += close;
}

Json::List texts(const std::vector<std::string>& values) {
  return Json::List(values.begin(), values.end());
}

/// Builds an object; empty texts and lists are left out.
class Fields {
 public:
  void add(const std::string& key, bool value) { object_.emplace(key, value); }
  void add(const std::string& key, std::string text) {
    if (!text.empty()) object_.emplace(key, std::move(text));
  }
  void add(const std::string& key, Json::List list) {
    if (!list.empty()) object_.emplace(key, std::move(list));
  }
  void add(const std::string& key, const std::vector<std::string>& list) { add(key, texts(list)); }
  void add(const std::string& key, Json::Object object) { object_.emplace(key, std::move(object)); }

  Json::Object take() { return std::move(object_); }

 private:
  Json::Object object_;
};

Json::Object nameInfoV0(const Name& name) {
  constexpr const char* kinds[] = {"long", "short", "longWithSingleDash"};
  return {{"kind", kinds[static_cast<int>(name.kind)]}, {"name", name.text}};
}

struct CompletionKindV0 {
  using Object = Json::Object;
  Object operator()(const NoCompletion&) const { return {}; }
  Object operator()(const CompletionList& kind) const {
    return {{"list", Object{{"values", texts(kind.values)}}}};
  }
  Object operator()(const CompletionFiles& kind) const {
    return {{"file", Object{{"extensions", texts(kind.extensions)}}}};
  }
  Object operator()(const CompletionDirectories&) const { return {{"directory", Object{}}}; }
  Object operator()(const CompletionShellCommand& kind) const {
    return {{"shellCommand", Object{{"command", kind.command}}}};
  }
  Object operator()(const CompletionCustom&) const { return {{"custom", Object{}}}; }
};

Json::Object argumentInfoV0(const ArgumentDefinition& definition) {
  constexpr const char* kinds[] = {"positional", "option", "flag"};
  constexpr const char* strategies[] = {"default", "unconditional"};
  Json::List names;
  for (const Name& name : definition.names) names.push_back(nameInfoV0(name));
  Fields info;
  info.add("kind", std::string(kinds[static_cast<int>(definition.kind)]));
  info.add("shouldDisplay", definition.isVisible);
  info.add("sectionTitle", definition.sectionTitle);
  info.add("isOptional", definition.isOptional);
  info.add("isRepeating", definition.isRepeating);
  info.add("parsingStrategy",
           std::string(strategies[static_cast<int>(definition.parsingStrategy)]));
  info.add("names", std::move(names));
  if (const Name* name = definition.names.preferred()) info.add("preferredName", nameInfoV0(*name));
  info.add("valueName", definition.valueName);
  info.add("defaultValue", definition.defaultValue);
  info.add("allValues", definition.allValueStrings);
  if (auto kind = std::visit(CompletionKindV0{}, definition.completionKind()); !kind.empty())
    info.add("completionKind", std::move(kind));
  info.add("abstract", definition.abstract);
  info.add("discussion", definition.discussion);
  return info.take();
}

Json::Object commandInfoV0(const CommandStack& stack) {
  const CommandConfiguration configuration = stack.back().configuration();
  std::vector<std::string> superCommands;
  for (std::size_t i = 0; i + 1 < stack.size(); ++i)
    superCommands.push_back(stack[i].configuration().commandName);
  const DeclaredCommand declared(stack.back());
  Json::List arguments;
  for (const ArgumentDefinition& definition : declared.arguments.definitions())
    arguments.push_back(argumentInfoV0(definition));
  for (const ArgumentDefinition& flag : builtInFlags(stack))
    arguments.push_back(argumentInfoV0(flag));
  Json::List subcommands;
  for (const CommandType& child : children(stack)) {
    CommandStack below = stack;
    below.push_back(child);
    subcommands.push_back(commandInfoV0(below));
  }

  Fields info;
  info.add("superCommands", superCommands);
  info.add("shouldDisplay", configuration.shouldDisplay);
  info.add("commandName", configuration.commandName);
  info.add("aliases", configuration.aliases);
  info.add("abstract", configuration.abstract);
  info.add("discussion", configuration.discussion);
  if (const auto& child = configuration.defaultSubcommand)
    info.add("defaultSubcommand", child->configuration().commandName);
  info.add("subcommands", std::move(subcommands));
  info.add("arguments", std::move(arguments));
  return info.take();
}

}  // namespace

std::string dumpHelp(const CommandStack& stack) {
  return Writer().write(
      Json::Object{{"serializationVersion", kToolInfoV0}, {"command", commandInfoV0(stack)}});
}

}  // namespace ArgumentParser
