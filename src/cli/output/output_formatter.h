#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output/field_tables.h"
#include "cli/output/output_format.h"

namespace tavi {

/// The selection of fields, and the forms of texts on the command line.
struct OutputFormatter {
  /// The names in a --fields value; "all" stands for every available name but "content". Nothing
  /// is dropped or checked. Absent when the option was not given.
  static std::optional<std::vector<std::string>> parseFieldList(
      std::span<const std::string_view> available, const std::optional<std::string>& fields);

  /// The fields to print. Throws TaviCLIError at the first name that the record's table lacks.
  template <class Record>
  static std::vector<FieldDescriptor<Record>> resolveFields(const FormatOptions& options) {
    const FieldTable<Record> table = fieldTable<Record>();
    std::vector<std::string_view> names;
    for (const auto& field : table) names.push_back(field.name);

    std::vector<FieldDescriptor<Record>> fields;
    for (const std::size_t index : selectedIndices(names, defaultFields<Record>, options.fields))
      fields.push_back(table[index]);
    return fields;
  }

  /// Whether the text of notes was selected, which only its own name does.
  static bool selectsContent(const FormatOptions& options);
  /// Whether a detail of the notes was selected, see FieldDescriptor.
  static bool selectsDetails(const FormatOptions& options);

  /// Backslash, line feed, carriage return and tab as \\, \n, \r and \t.
  static std::string escapeTSV(std::string_view text);
  /// As RFC 4180 has it: in double quotes, where the text needs them.
  static std::string escapeCSV(std::string_view text);
  /// \n, \t, \r and \\ in a text of the command line become what they stand for; a backslash
  /// before anything else, or at the end, stays.
  static std::string unescape(std::string_view text);

 private:
  static std::vector<std::size_t> selectedIndices(std::span<const std::string_view> available,
                                                  std::span<const std::string_view> defaults,
                                                  const std::optional<std::string>& fields);
};

}  // namespace tavi
