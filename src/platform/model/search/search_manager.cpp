#include "platform/model/search/search_manager.h"

#include <chrono>

#include "platform/model/search/search_query.h"
#include "platform/text/utf8.h"

namespace tavimodel {
namespace {

SearchQuery parse(std::string_view query) {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return parseSearchQuery(platform::text::replacingInvalidUTF8(query),
                          std::chrono::duration<double>(sinceEpoch).count());
}

}  // namespace

std::optional<Predicate> KVNoteSearchManager::predicateForSearchString(std::string_view query) {
  auto parsed = std::make_shared<SearchQuery>(parse(query));
  if (parsed->groups.empty()) return std::nullopt;
  return Predicate::matching(std::move(parsed));
}

Predicate KVNoteSearchManager::predicateForTag(std::string name) {
  auto query = std::make_shared<SearchQuery>();
  query->groups.push_back({{.kind = SearchCondition::Kind::tag, .text = std::move(name)}});
  return Predicate::matching(std::move(query));
}

std::optional<SearchTermCounter> KVNoteSearchManager::defaultSearchRegexForSearchString(
    std::string_view query) {
  std::vector<std::string> terms;
  for (const auto& group : parse(query).groups) {
    for (const SearchCondition& condition : group) {
      if (condition.kind == SearchCondition::Kind::term && !condition.negated) {
        terms.push_back(condition.text);
      }
    }
  }
  if (terms.empty()) return std::nullopt;
  return SearchTermCounter(terms);
}

}  // namespace tavimodel
