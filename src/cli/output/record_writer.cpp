#include "cli/output/record_writer.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "cli/output/escapes.h"
#include "operations/comma_list.h"
#include "platform/system/base64.h"
#include "platform/system/shared_work.h"

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

// While this thread writes a part of the rows, another one writes the next part to memory.
void RecordWriter::writeInTwoThreads(std::int64_t count, const WriteRange& write) {
  constexpr std::int64_t mostInPart = 8192;  // rows, about a megabyte
  const std::int64_t part = std::min(mostInPart, (count + 1) / 2);
  for (std::int64_t first = 0; first < count; first += 2 * part) {
    const std::int64_t middle = std::min(first + part, count);
    const std::int64_t last = std::min(middle + part, count);
    StringSink ahead;
    const auto writeAhead = [&](std::size_t) {
      RecordWriter writer(ahead, format_);
      write(writer, middle, last);
    };
    platform::system::SharedWork other(1, writeAhead, true);
    write(*this, first, middle);
    other.finish();
    appendRows(ahead.take());
  }
}

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

void RecordWriter::appendRows(std::string_view rows) {
  if (rows.empty()) return;
  if (format_ == OutputFormat::json) return json_.raw(rows);
  sink_.append(rows);
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
