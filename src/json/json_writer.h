#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "bytes/byte_sink.h"
#include "json/json_value.h"

namespace tavi {

/// How strings are escaped. Both styles escape `"`, `\` and characters below U+0020 (\n, \r, \t,
/// else \u00xx in lower case) and write other characters as UTF-8; `wire` also writes "/" as `\/`.
enum class JSONStyle { commandLine, wire };

/// Writes JSON (RFC 8259) into a sink, value by value, without blanks and without holding the
/// document in memory. The writer places the commas; the caller is responsible for balanced nesting
/// and for the order of keys. The sink must outlive the writer, which throws what the sink throws.
///
///   writer.beginObject();
///   writer.key("size"); writer.integer(3);
///   writer.endObject();
class JSONWriter {
 public:
  JSONWriter(ByteSink& sink, JSONStyle style) : sink_(sink), style_(style) {}

  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }
  void key(std::string_view name);

  /// Ill-formed UTF-8 in `text` is written as U+FFFD, so that the output is always valid JSON.
  void string(std::string_view text);
  void integer(std::int64_t number);
  void number(double number);  ///< null if it is not finite
  void boolean(bool truth) { literal(truth ? "true" : "false"); }
  void null() { literal("null"); }
  /// Members of objects are written in their order in style `commandLine`. In style `wire` they are
  /// sorted by name at every depth, and only the last of several with the same name is written.
  void value(const JSONValue& value);
  /// `json` must be an encoded JSON value, or several with commas between them; it is written as it
  /// is.
  void raw(std::string_view json) { literal(json); }

  /// Writes one string in parts: beginString, any number of stringPart, endString. The whole string
  /// must be valid UTF-8; a character may be split between two parts.
  void beginString() { open('"'); }
  void stringPart(std::string_view text);
  void endString() { close('"'); }

 private:
  void open(char bracket) {
    if (commaDue_) sink_.put(',');
    sink_.put(bracket);
    commaDue_ = false;
  }
  void close(char bracket) {
    sink_.put(bracket);
    commaDue_ = true;
  }
  void literal(std::string_view text) {
    if (commaDue_) sink_.put(',');
    sink_.append(text);
    commaDue_ = true;
  }
  void object(const JSONValue::Object& members);

  ByteSink& sink_;
  JSONStyle style_;
  bool commaDue_ = false;
};

/// `text` escaped in style `commandLine`, without the quotes around it.
std::string escapeJSON(std::string_view text);

}  // namespace tavi
