#pragma once

#include <cstdint>
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

/// Renders records as lines of TSV, as CSV under a header, or as one JSON document. Each row is
/// written as it is read, so memory follows one row.
class RecordWriter {
 public:
  RecordWriter(ByteSink& sink, OutputFormat format)
      : sink_(sink), json_(sink, JSONStyle::commandLine), format_(format) {}

  /// The number of rows written.
  template <class Record>
  std::int64_t writeRows(RecordSource<Record>& rows,
                         const std::vector<FieldDescriptor<Record>>& fields) {
    std::int64_t count = 0;
    beginRows(namesOf(fields));
    rows.forEach([&](const Record& record) {
      writeRow(record, fields);
      ++count;
    });
    endRows();
    return count;
  }

  /// In JSON the object alone, else as one row.
  template <class Record>
  void writeRecord(const Record& record, const std::vector<FieldDescriptor<Record>>& fields) {
    if (format_ == OutputFormat::csv) beginRows(namesOf(fields));
    writeRow(record, fields);
    endDocument();
  }

  void writeCount(std::int64_t count);
  /// The text of a note, in TSV as it stands.
  void writeContent(std::string_view text);
  /// In TSV the bytes alone, else with the name, the size and the bytes in base64.
  void writeAttachment(std::string_view filename, std::string_view bytes);

 private:
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
  void endDocument();
  void writeCell(std::string_view name, const FieldValue& value, bool first);

  ByteSink& sink_;
  JSONWriter json_;
  OutputFormat format_;
  FieldContext context_;
};

}  // namespace tavi
