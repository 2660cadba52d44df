#include "cli/output/record_writer.h"

#include <array>
#include <charconv>

#include "cli/output/escapes.h"
#include "operations/comma_list.h"
#include "platform/system/base64.h"

namespace tavi {
namespace {

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

void writeInteger(ByteSink& sink, std::int64_t number) {
  std::array<char, 24> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  sink.append({digits.begin(), end});
}

void writeTSVCell(ByteSink& sink, const FieldValue& value) {
  std::visit(Overloaded{
                 [](std::monostate) {},
                 [&](std::string_view text) { writeEscapedTSV(sink, text); },
                 [&](std::int64_t number) { writeInteger(sink, number); },
                 [&](Instant instant) { sink.append(formatISO8601(instant)); },
                 [&](TextList list) {
                   for (std::size_t i = 0; i < list.size(); ++i) {
                     if (i > 0) sink.put(',');
                     writeEscapedTSV(sink, list[i]);
                   }
                 },
             },
             value);
}

void writeCSVCell(ByteSink& sink, const FieldValue& value) {
  std::visit(Overloaded{
                 [](std::monostate) {},
                 [&](std::string_view text) { writeEscapedCSV(sink, text); },
                 [&](std::int64_t number) { writeInteger(sink, number); },
                 [&](Instant instant) { sink.append(formatISO8601(instant)); },
                 [&](TextList list) { writeEscapedCSV(sink, joined(list, ",")); },
             },
             value);
}

void writeJSONValue(JSONWriter& json, const FieldValue& value) {
  std::visit(Overloaded{
                 [&](std::monostate) { json.null(); },
                 [&](std::string_view text) { json.string(text); },
                 [&](std::int64_t number) { json.integer(number); },
                 [&](Instant instant) { json.string(formatISO8601(instant)); },
                 [&](TextList list) {
                   json.beginArray();
                   for (std::string_view text : list) json.string(text);
                   json.endArray();
                 },
             },
             value);
}

}  // namespace

void RecordWriter::beginRows(const std::vector<std::string_view>& names) {
  if (format_ == OutputFormat::json) json_.beginArray();
  if (format_ != OutputFormat::csv) return;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) sink_.put(',');
    writeEscapedCSV(sink_, names[i]);
  }
  sink_.put('\n');
}

void RecordWriter::endRows() {
  if (format_ == OutputFormat::json) json_.endArray();
  endDocument();
}

void RecordWriter::beginRow() {
  if (format_ == OutputFormat::json) json_.beginObject();
}

void RecordWriter::endRow() {
  if (format_ == OutputFormat::json) return json_.endObject();
  sink_.put('\n');
}

void RecordWriter::endDocument() {
  if (format_ == OutputFormat::json) sink_.put('\n');
}

void RecordWriter::writeCell(std::string_view name, const FieldValue& value, bool first) {
  if (format_ == OutputFormat::json) {
    json_.key(name);
    return writeJSONValue(json_, value);
  }
  if (!first) sink_.put(format_ == OutputFormat::tsv ? '\t' : ',');
  if (format_ == OutputFormat::tsv) {
    writeTSVCell(sink_, value);
  } else {
    writeCSVCell(sink_, value);
  }
}

void RecordWriter::writeCount(std::int64_t count) {
  if (format_ == OutputFormat::json) {
    json_.beginObject();
    json_.key("count");
    json_.integer(count);
    json_.endObject();
  } else {
    if (format_ == OutputFormat::csv) sink_.append("count\n");
    writeInteger(sink_, count);
  }
  sink_.put('\n');
}

void RecordWriter::writeContent(std::string_view text) {
  if (format_ == OutputFormat::tsv) return sink_.append(text);
  if (format_ == OutputFormat::json) {
    json_.beginObject();
    json_.key("content");
    json_.string(text);
    json_.endObject();
  } else {
    sink_.append("content\n");
    writeEscapedCSV(sink_, text);
  }
  sink_.put('\n');
}

void RecordWriter::writeAttachment(std::string_view filename, std::string_view bytes) {
  if (format_ == OutputFormat::tsv) return sink_.append(bytes);
  const auto size = static_cast<std::int64_t>(bytes.size());
  const std::string base64 = platform::system::base64Encoded(bytes);
  if (format_ == OutputFormat::json) {
    json_.beginObject();
    json_.key("filename");
    json_.string(filename);
    json_.key("size");
    json_.integer(size);
    json_.key("base64");
    json_.string(base64);
    json_.endObject();
  } else {
    sink_.append("filename,size,base64\n");
    writeEscapedCSV(sink_, filename);
    sink_.put(',');
    writeInteger(sink_, size);
    sink_.put(',');
    sink_.append(base64);
  }
  sink_.put('\n');
}

}  // namespace tavi
