#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ArgumentParser/parsable_command.h"
#include "cli/completions.h"

/// The options by which a user chooses what is printed, and how.
namespace tavi {

enum class OutputFormat { tsv, csv, json };

constexpr std::array<std::pair<std::string_view, OutputFormat>, 3> argumentValues(OutputFormat) {
  return {{{"tsv", OutputFormat::tsv}, {"csv", OutputFormat::csv}, {"json", OutputFormat::json}}};
}

struct FormatOnlyOptions : ArgumentParser::ParsableArguments {
  OutputFormat format = OutputFormat::tsv;

  void declare(ArgumentParser::ArgumentSet& args) override {
    args.option(format, "--format").help("Output format: tsv, csv, json.");
  }
};

struct FormatOptions : FormatOnlyOptions {
  using FieldNames = std::vector<std::string> (*)();

  std::optional<std::string> fields;  ///< names between commas

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
