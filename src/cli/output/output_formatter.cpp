#include "cli/output/output_formatter.h"

#include <algorithm>

#include "cli/cli_error.h"
#include "cli/output/escapes.h"
#include "operations/comma_list.h"

namespace tavi {
namespace {

constexpr std::string_view contentField = "content";

}  // namespace

std::optional<std::vector<std::string>> OutputFormatter::parseFieldList(
    std::span<const std::string_view> available, const std::optional<std::string>& fields) {
  if (!fields) return std::nullopt;
  std::vector<std::string> names;
  for (std::string& piece : trimmedPieces(*fields)) {
    if (piece == "all") {
      for (std::string_view name : available)
        if (name != contentField) names.emplace_back(name);
    } else {
      names.push_back(std::move(piece));
    }
  }
  return names;
}

std::vector<std::size_t> OutputFormatter::selectedIndices(
    std::span<const std::string_view> available, std::span<const std::string_view> defaults,
    const std::optional<std::string>& fields) {
  const auto selected = parseFieldList(available, fields)
                            .value_or(std::vector<std::string>(defaults.begin(), defaults.end()));
  std::vector<std::size_t> indices;
  for (const std::string& name : selected) {
    const auto found = std::ranges::find(available, name);
    if (found == available.end()) {
      throw TaviCLIError::usage("Unknown field: " + name + " (valid: " + joined(available, ", ") +
                                ")");
    }
    indices.push_back(static_cast<std::size_t>(found - available.begin()));
  }
  return indices;
}

bool OutputFormatter::selectsContent(const FormatOptions& options) {
  return options.fields && std::ranges::count(trimmedPieces(*options.fields), contentField) > 0;
}

bool OutputFormatter::selectsDetails(const FormatOptions& options) {
  if (!options.fields) return false;
  const std::vector<std::string> names = trimmedPieces(*options.fields);
  if (std::ranges::count(names, "all") > 0) return true;
  return std::ranges::any_of(fieldTable<NoteMetadata>(), [&](const auto& field) {
    return field.isDetail && std::ranges::count(names, field.name) > 0;
  });
}

std::string OutputFormatter::escapeTSV(std::string_view text) {
  StringSink sink;
  writeEscapedTSV(sink, text);
  return sink.take();
}

std::string OutputFormatter::escapeCSV(std::string_view text) {
  StringSink sink;
  writeEscapedCSV(sink, text);
  return sink.take();
}

std::string OutputFormatter::unescape(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char next = text[at] == '\\' && at + 1 < text.size() ? text[at + 1] : '\0';
    constexpr std::string_view letters = "ntr\\", meanings = "\n\t\r\\";
    const std::size_t known = letters.find(next);
    if (known == std::string_view::npos) {
      result += text[at];
    } else {
      result += meanings[known];
      ++at;
    }
  }
  return result;
}

}  // namespace tavi
