#include "store/search_words.h"

#include <utility>

#include "platform/model/search/directives.h"

namespace tavi {

std::vector<SearchWord> searchWords() {
  std::vector<SearchWord> words;
  for (auto& [word, finds] : tavimodel::searchDirectives()) {
    words.push_back({std::move(word), std::move(finds)});
  }
  return words;
}

}  // namespace tavi
