#include "platform/model/search/predicate.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace tavimodel {
namespace {

// Attributes that may stand in a format, and what SQL calls them.
struct Attribute {
  std::string_view key;
  std::string_view sql;
};
constexpr std::array attributes{
    Attribute{"trashed", "trashed"},
    Attribute{"archived", "archived"},
    Attribute{"permanentlyDeleted", "permanentlyDeleted"},
    Attribute{"pinned", "pinned"},
    Attribute{"pinnedNotes.@count",
              "(SELECT count(*) FROM pinnedInTag WHERE pinnedInTag.tag = tag.id)"},
};

std::vector<std::string_view> words(std::string_view format) {
  std::vector<std::string_view> result;
  while (true) {
    const std::size_t begin = format.find_first_not_of(' ');
    if (begin == std::string_view::npos) return result;
    const std::size_t end = std::min(format.find(' ', begin), format.size());
    result.push_back(format.substr(begin, end - begin));
    format.remove_prefix(end);
  }
}

[[noreturn]] void refuse(std::string_view word) {
  throw std::invalid_argument(fmt::format("predicate format: '{}' is not understood", word));
}

std::string comparison(std::string_view key, std::string_view op, std::string_view value) {
  const auto* attribute =
      std::find_if(attributes.begin(), attributes.end(), [&](auto& a) { return a.key == key; });
  if (attribute == attributes.end()) refuse(key);
  if (op == "==" && value == "nil") return fmt::format("{} IS NULL", attribute->sql);
  const std::string_view literal = value == "YES" ? "1" : value == "NO" ? "0" : value;
  if (literal.find_first_not_of("0123456789") != std::string_view::npos) refuse(value);
  if (op == "==") return fmt::format("{} = {}", attribute->sql, literal);
  if (op == ">" || op == "<") return fmt::format("{} {} {}", attribute->sql, op, literal);
  refuse(op);
}

}  // namespace

Predicate Predicate::withFormat(std::string_view format) {
  const std::vector<std::string_view> tokens = words(format);
  if (tokens.size() % 4 != 3) refuse(format);
  std::string sql = comparison(tokens[0], tokens[1], tokens[2]);
  for (std::size_t i = 3; i < tokens.size(); i += 4) {
    if (tokens[i] != "AND" && tokens[i] != "OR") refuse(tokens[i]);
    sql +=
        fmt::format(" {} {}", tokens[i], comparison(tokens[i + 1], tokens[i + 2], tokens[i + 3]));
  }
  Predicate predicate;
  predicate.sql_ = fmt::format("({})", sql);
  return predicate;
}

Predicate Predicate::andPredicate(const std::vector<Predicate>& subpredicates) {
  Predicate result;
  for (const Predicate& part : subpredicates) {
    if (part.sql_ != "1")
      result.sql_ = result.sql_ == "1" ? part.sql_ : result.sql_ + " AND " + part.sql_;
    if (part.search_) result.search_ = part.search_;
  }
  return result;
}

Predicate Predicate::matching(std::shared_ptr<const SearchQuery> query) {
  Predicate predicate;
  predicate.search_ = std::move(query);
  return predicate;
}

}  // namespace tavimodel
