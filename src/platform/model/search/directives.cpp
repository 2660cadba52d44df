#include "platform/model/search/directives.h"

#include "platform/model/search/condition_kinds.h"
#include "platform/model/search/date_directives.h"

namespace tavimodel {

std::vector<SearchDirective> searchDirectives() {
  std::vector<SearchDirective> directives;
  const auto add = [&](std::string_view word, std::string_view finds) {
    directives.push_back({"@" + std::string(word), std::string(finds)});
  };
  for (const DateDirective& directive : dateDirectives) add(directive.example, directive.finds);
  for (const ConditionKind& kind : conditionKinds) {
    if (!kind.directive.empty()) add(kind.directive, kind.finds);
  }
  add("title", "terms are looked for in titles only");
  return directives;
}

}  // namespace tavimodel
