#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/byte_sink.h"
#include "cli/output/field_value.h"
#include "cli/output/output_format.h"
#include "domain/record_list.h"
#include "json/json_writer.h"

namespace tavi {

/// Writes records as lines of TSV, as CSV with a header (RFC 4180), or as one JSON document. Rows
/// are written as they are read, so only one is in memory at a time.
class RecordWriter {
 public:
  /// The sink must outlive the writer, which throws what the sink throws.
  RecordWriter(ByteSink& sink, OutputFormat format)
      : sink_(sink), json_(sink, JSONStyle::commandLine), format_(format) {}

  /// Writes a list. Returns the number of rows.
  template <class Record>
  std::int64_t writeRows(RecordSource<Record>& rows,
                         const std::vector<FieldDescriptor<Record>>& fields) {
    std::int64_t count = 0;
    beginRows(namesOf(fields));
    if (rows.load() && rows.count() >= worthAThread) {
      count = rows.count();
      writeInTwoThreads(count, [&](RecordWriter& writer, std::int64_t first, std::int64_t last) {
        rows.forEachBetween(first, last,
                            [&](const Record& record) { writer.writeRow(record, fields); });
      });
    } else {
      rows.forEach([&](const Record& record) {
        writeRow(record, fields);
        ++count;
      });
    }
    endRows();
    return count;
  }

  /// Writes a single record: in JSON as an object, otherwise as a list of one row.
  template <class Record>
  void writeRecord(const Record& record, const std::vector<FieldDescriptor<Record>>& fields) {
    if (format_ == OutputFormat::csv) beginRows(namesOf(fields));
    writeRow(record, fields);
    endDocument();
  }

  void writeCount(std::int64_t count);
  /// Writes the text of a note; in TSV without escaping.
  void writeContent(std::string_view text);
  /// Writes the raw bytes in TSV; in CSV and JSON the name, the size and the bytes in base64 (RFC
  /// 4648).
  void writeAttachment(std::string_view filename, std::string_view bytes);

 private:
  static constexpr std::int64_t worthAThread = 4096;  ///< rows

  /// Writes `count` rows. Calls `write`, in two threads, with the writer to use and a range of
  /// rows.
  using WriteRange = std::function<void(RecordWriter&, std::int64_t first, std::int64_t last)>;
  void writeInTwoThreads(std::int64_t count, const WriteRange& write);

  template <class Record>
  static std::vector<std::string_view> namesOf(const std::vector<FieldDescriptor<Record>>& fields) {
    std::vector<std::string_view> names;
    for (const auto& field : fields) names.push_back(field.name);
    return names;
  }

  template <class Record>
  void writeRow(const Record& record, const std::vector<FieldDescriptor<Record>>& fields) {
    beginRow();
    bool first = true;
    for (const auto& field : fields) {
      writeCell(field.name, field.extract(record, context_), first);
      first = false;
    }
    endRow();
  }

  void beginRows(const std::vector<std::string_view>& names);
  void endRows();
  void beginRow();
  void endRow();
  /// Appends complete rows from another writer of this format.
  void appendRows(std::string_view rows);
  void endDocument();
  void writeCell(std::string_view name, const FieldValue& value, bool first);

  ByteSink& sink_;
  JSONWriter json_;
  OutputFormat format_;
  FieldContext context_;
};

}  // namespace tavi
