#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output/field_tables.h"
#include "cli/output/output_format.h"

namespace tavi {

/// Selects fields and escapes texts for the command line.
struct OutputFormatter {
  /// Splits a --fields value into names, not checked against `available`. "all" becomes all
  /// available names except "content". Absent if the option was not given.
  static std::optional<std::vector<std::string>> parseFieldList(
      std::span<const std::string_view> available, const std::optional<std::string>& fields);

  /// The fields to print. Throws TaviCLIError for the first unknown name.
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

  /// Whether the text of notes was selected, which "all" does not do.
  static bool selectsContent(const FormatOptions& options);
  /// Whether a field with `isDetail` was selected.
  static bool selectsDetails(const FormatOptions& options);

  /// See writeEscapedTSV.
  static std::string escapeTSV(std::string_view text);
  /// See writeEscapedCSV.
  static std::string escapeCSV(std::string_view text);
  /// Replaces the escapes \n, \t, \r and \\ in an argument. A backslash before another character,
  /// or at the end, is kept.
  static std::string unescape(std::string_view text);

 private:
  static std::vector<std::size_t> selectedIndices(std::span<const std::string_view> available,
                                                  std::span<const std::string_view> defaults,
                                                  const std::optional<std::string>& fields);
};

}  // namespace tavi
