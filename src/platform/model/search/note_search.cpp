#include "platform/model/search/note_search.h"

#include <chrono>
#include <utility>

#include "platform/text/utf8.h"

namespace tavimodel {
namespace {

using Kind = SearchCondition::Kind;

double secondsNow() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration<double>(sinceEpoch).count();
}

SearchTerms countedTerms(const SearchQuery& query) {
  SearchTerms terms;
  for (const auto& group : query.groups) {
    for (const SearchCondition& condition : group) {
      if (condition.kind == Kind::term && !condition.negated) terms.add(condition.text);
    }
  }
  return terms;
}

}  // namespace

NoteSearch readSearch(std::string_view query) {
  auto parsed = std::make_shared<const SearchQuery>(
      parseSearchQuery(platform::text::replacingInvalidUTF8(query), secondsNow()));
  NoteSearch search;
  SearchTerms counted = countedTerms(*parsed);
  if (!counted.empty()) search.counted = std::make_shared<SearchTerms>(std::move(counted));
  if (!parsed->groups.empty()) search.query = std::move(parsed);
  return search;
}

std::shared_ptr<const SearchQuery> searchForTag(std::string name) {
  auto query = std::make_shared<SearchQuery>();
  query->groups.push_back({{.kind = Kind::tag, .text = std::move(name)}});
  return query;
}

}  // namespace tavimodel
