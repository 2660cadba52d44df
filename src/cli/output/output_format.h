#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ArgumentParser/parsable_command.h"
#include "cli/completions.h"

/// The options that select the fields and the format of the output.
namespace tavi {

/// TSV without a header, CSV (RFC 4180) with a header, or one JSON document (RFC 8259).
enum class OutputFormat { tsv, csv, json };

constexpr std::array<std::pair<std::string_view, OutputFormat>, 3> argumentValues(OutputFormat) {
  return {{{"tsv", OutputFormat::tsv}, {"csv", OutputFormat::csv}, {"json", OutputFormat::json}}};
}

/// --format
struct FormatOnlyOptions : ArgumentParser::ParsableArguments {
  OutputFormat format = OutputFormat::tsv;

  void declare(ArgumentParser::ArgumentSet& args) override {
    args.option(format, "--format").help("Output format: tsv, csv, json.");
  }
};

/// --format and --fields
struct FormatOptions : FormatOnlyOptions {
  using FieldNames = std::vector<std::string> (*)();  ///< the names that --fields accepts

  std::optional<std::string> fields;  ///< comma-separated names; absent: the default fields

  explicit FormatOptions(FieldNames all) : fieldNames(all) {}

  void declare(ArgumentParser::ArgumentSet& args) override {
    FormatOnlyOptions::declare(args);
    args.option(fields, "--fields")
        .help("Comma-separated field names, or \"all\".")
        .completes(completions::commaSeparated([names = fieldNames](auto&) { return names(); }));
  }

 private:
  FieldNames fieldNames;
};

}  // namespace tavi
