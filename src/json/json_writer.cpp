#include "json/json_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>

#include "bytes/byte_set.h"
#include "platform/text/utf8.h"

namespace tavi {
namespace {

// The bytes that must be escaped. JSON does not require it of "/"; style `wire` does.
using CommandLineEscapes = ByteSet<0x20, '"', '\\'>;
using WireEscapes = ByteSet<0x20, '"', '\\', '/'>;

void writeEscape(ByteSink& sink, char byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  switch (byte) {
    case '\n':
      return sink.append("\\n");
    case '\r':
      return sink.append("\\r");
    case '\t':
      return sink.append("\\t");
    case '"':
      return sink.append("\\\"");
    case '\\':
      return sink.append("\\\\");
    case '/':
      return sink.append("\\/");
    default:
      break;
  }
  sink.append("\\u00");
  sink.put(digits[static_cast<unsigned char>(byte) >> 4]);
  sink.put(digits[static_cast<unsigned char>(byte) & 15]);
}

template <class Escapes>
void writeEscaped(ByteSink& sink, std::string_view text) {
  while (true) {
    const std::size_t plain = Escapes::lengthBefore(text);
    sink.append(text.substr(0, plain));
    if (plain == text.size()) return;
    writeEscape(sink, text[plain]);
    text.remove_prefix(plain + 1);
  }
}

}  // namespace

void JSONWriter::key(std::string_view name) {
  string(name);
  sink_.put(':');
  commaDue_ = false;
}

void JSONWriter::string(std::string_view text) {
  beginString();
  if (platform::text::isValidUTF8(text)) {
    stringPart(text);
  } else {
    stringPart(platform::text::replacingInvalidUTF8(text));
  }
  endString();
}

void JSONWriter::stringPart(std::string_view text) {
  if (style_ == JSONStyle::wire) return writeEscaped<WireEscapes>(sink_, text);
  writeEscaped<CommandLineEscapes>(sink_, text);
}

void JSONWriter::integer(std::int64_t number) {
  std::array<char, 24> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  literal({digits.begin(), end});
}

void JSONWriter::number(double number) {
  if (!std::isfinite(number)) return null();
  std::array<char, 32> digits;  // the shortest round-trip form has at most 24 characters
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  literal({digits.begin(), end});
}

void JSONWriter::value(const JSONValue& value) {
  switch (value.kind()) {
    case JSONValue::Kind::string:
      return string(value.string());
    case JSONValue::Kind::integer:
      return integer(value.integer());
    case JSONValue::Kind::number:
      return number(value.number());
    case JSONValue::Kind::boolean:
      return boolean(value.boolean());
    case JSONValue::Kind::null:
      return null();
    case JSONValue::Kind::object:
      return object(value.object());
    case JSONValue::Kind::array:
      beginArray();
      for (const JSONValue& element : value.array()) this->value(element);
      endArray();
  }
}

void JSONWriter::object(const JSONValue::Object& members) {
  const auto write = [this](const auto& member) {
    key(member.first);
    value(member.second);
  };
  beginObject();
  if (style_ == JSONStyle::wire) {
    // emplace keeps the first member of a name, so going backwards keeps the last one.
    std::map<std::string_view, const JSONValue&> sorted;
    for (auto member = members.rbegin(); member != members.rend(); ++member)
      sorted.emplace(member->first, member->second);
    std::ranges::for_each(sorted, write);
  } else {
    std::ranges::for_each(members, write);
  }
  endObject();
}

std::string escapeJSON(std::string_view text) {
  StringSink sink;
  JSONWriter(sink, JSONStyle::commandLine).string(text);
  const std::string quoted = sink.take();
  return quoted.substr(1, quoted.size() - 2);
}

}  // namespace tavi
