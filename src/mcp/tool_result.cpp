#include "mcp/tool_result.h"

#include <fmt/format.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "mcp/staleness_tracker.h"

namespace tavi::mcp {
namespace {

/// Writes JSON as the content of a JSON string, and keeps a copy unless it is long.
class AnswerText final : public ByteSink {
 public:
  explicit AnswerText(JSONWriter& writer) : writer_(writer) {}

  bool isObject() const { return first_ == '{'; }
  const std::optional<std::string>& copy() const { return copy_; }

 private:
  static constexpr std::size_t longestCopy = 1024 * 1024;  ///< bytes

  void accept(std::string_view json) override {
    if (first_ == 0) first_ = json.front();
    writer_.stringPart(json);
    if (copy_ && copy_->size() + json.size() > longestCopy) copy_.reset();
    if (copy_) *copy_ += json;
  }

  JSONWriter& writer_;
  char first_ = 0;
  std::optional<std::string> copy_{std::in_place};
};

void writeText(JSONWriter& writer, std::string_view text) {
  writer.beginObject();
  writer.key("text");
  writer.string(text);
  writer.key("type");
  writer.string("text");
  writer.endObject();
}

std::optional<std::string> writeAnswerAsText(JSONWriter& writer, std::string_view toolName,
                                             const ResultWriter& answer) {
  writer.beginObject();
  writer.key("text");
  writer.beginString();
  AnswerText text(writer);
  JSONWriter inner(text, JSONStyle::wire);
  answer(inner);
  text.flush();
  if (!text.isObject())
    throw std::runtime_error(
        fmt::format("internal error: tool \"{}\" returned non-object JSON", toolName));
  writer.endString();
  writer.key("type");
  writer.string("text");
  writer.endObject();
  return text.copy();
}

}  // namespace

void writeToolResult(JSONWriter& writer, std::string_view toolName, const ResultWriter& answer,
                     bool stale) {
  writer.beginObject();
  writer.key("content");
  writer.beginArray();
  const std::optional<std::string> json = writeAnswerAsText(writer, toolName, answer);
  if (stale) writeText(writer, kStaleWarning);
  writer.endArray();
  writer.key("structuredContent");
  if (json) {
    writer.raw(*json);
  } else {
    answer(writer);
  }
  writer.endObject();
}

void writeToolFailure(JSONWriter& writer, std::string_view message, bool stale) {
  writer.beginObject();
  writer.key("content");
  writer.beginArray();
  writeText(writer, message);
  if (stale) writeText(writer, kStaleWarning);
  writer.endArray();
  writer.key("isError");
  writer.boolean(true);
  writer.endObject();
}

}  // namespace tavi::mcp
