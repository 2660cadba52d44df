#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "bytes/byte_sink.h"
#include "json/json_value.h"

namespace tavi {

/// How texts are escaped. Both write `"` `\` and everything below U+0020 as escapes (\n, \r, \t,
/// else \u00xx in lower case), and all else as UTF-8; `wire` also writes "/" as `\/`.
enum class JSONStyle { commandLine, wire };

/// Writes JSON (RFC 8259) into a sink, value by value and without blanks; memory is the sink's
/// buffer alone. Commas are the writer's business, nesting and the order of keys the caller's:
/// where keys must be sorted, write them in that order.
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

  /// Ill-formed UTF-8 in `text` is written as U+FFFD, so that the output is JSON in any case.
  void string(std::string_view text);
  void integer(std::int64_t number);
  void number(double number);  ///< null where it is not finite
  void boolean(bool truth) { literal(truth ? "true" : "false"); }
  void null() { literal("null"); }
  /// The members of an object in their order in `commandLine`; in `wire` sorted by name at every
  /// depth, the last of a repeated name alone.
  void value(const JSONValue& value);
  /// `json` is one value, written as JSON already.
  void raw(std::string_view json) { literal(json); }

  /// A text in pieces: any number of stringPart between the two. The text as a whole must be
  /// valid UTF-8; a character may lie across two pieces.
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

/// `text` as it stands between the quotes of a JSON string of the command line.
std::string escapeJSON(std::string_view text);

}  // namespace tavi
