#include "domain/sort_criteria.h"

#include <gtest/gtest.h>

#include <string>

namespace tavi {
namespace {

/// The criteria in full, or the error's message.
std::string parsed(std::string_view text) {
  try {
    std::string result;
    for (const SortCriterion& criterion : parseSortCriteria(text)) {
      if (!result.empty()) result += ", ";
      result += std::string(rawText(criterion.field)) + " " + std::string(rawText(criterion.order));
    }
    return result;
  } catch (const SortParseError& error) {
    return error.what();
  }
}

TEST(SortCriteria, ReadsFieldsWithAndWithoutDirection) {
  const std::pair<const char*, const char*> cases[] = {
      {"pinned,modified", "pinned desc, modified desc"},
      {"title:asc,pinned", "title asc, pinned desc"},
      {",, created:desc\u00A0,\ttitle:,", "created desc, title desc"},
      {"::title:asc", "title asc"},
  };
  for (const auto& [text, criteria] : cases) EXPECT_EQ(parsed(text), criteria) << text;
}

TEST(SortCriteria, RefusesTheFirstFault) {
  const std::string fields = " (valid: pinned, modified, created, title)";
  const std::pair<const char*, std::string> cases[] = {
      {"", "sort string is empty"},
      {",,", "sort string is empty"},
      {"Pinned", "invalid sort field: Pinned" + fields},
      {":asc", "invalid sort field: asc" + fields},
      {"pinned, ,title", "invalid sort field: " + fields},
      {"title\n", "invalid sort field: title\n" + fields},
      {"title:asc:x", "invalid sort order: asc:x (valid: asc, desc)"},
      {"title::asc", "invalid sort order: :asc (valid: asc, desc)"},
      {"title: asc", "invalid sort order:  asc (valid: asc, desc)"},
      {"modified,modified:asc", "duplicate sort field: modified"},
      {"modified,modified:up", "duplicate sort field: modified"},
      {"title:up,title", "invalid sort order: up (valid: asc, desc)"},
  };
  for (const auto& [text, message] : cases) EXPECT_EQ(parsed(text), message) << text;
}

}  // namespace
}  // namespace tavi
