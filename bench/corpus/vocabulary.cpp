#include "vocabulary.h"

#include <array>
#include <cmath>
#include <set>

namespace corpus {
namespace {

constexpr std::size_t wordCount = 24'000;

// The most frequent words are real ones, so that a text looks natural.
constexpr std::array<std::string_view, 48> frequent{
    "the",   "of",  "and",  "to",    "a",     "in",   "is",   "it",   "that", "for",
    "was",   "on",  "with", "as",    "be",    "at",   "this", "have", "from", "or",
    "had",   "by",  "not",  "but",   "what",  "all",  "were", "when", "we",   "there",
    "can",   "an",  "your", "which", "their", "said", "if",   "do",   "will", "each",
    "about", "how", "up",   "out",   "them",  "then", "she",  "many"};

// There is no "x", so no generated word contains the two-letter word "ox".
constexpr std::array<std::string_view, 24> onsets{"b",  "c",  "d",  "f",  "g",  "h", "l",  "m",
                                                  "n",  "p",  "r",  "s",  "t",  "v", "w",  "st",
                                                  "tr", "pl", "ch", "gr", "sh", "k", "br", "j"};
constexpr std::array<std::string_view, 10> nuclei{"a", "e", "i",  "o",  "u",
                                                  "e", "a", "ea", "ou", "i"};
constexpr std::array<std::string_view, 12> codas{"",  "",  "",  "n",  "r",  "s",
                                                 "t", "l", "d", "nd", "st", "ng"};

constexpr std::array<std::string_view, 16> accentedWords{
    "café",     "naïve",  "Zürich", "façade",  "über",   "crème", "déjà",   "jalapeño",
    "Ångström", "résumé", "piñata", "smörgås", "garçon", "São",   "Straße", "żółw"};
constexpr std::array<std::string_view, 8> foreignSentences{
    "Сегодня утром в саду было тихо, и птицы пели над рекой.",
    "今日は朝から雨が降っているので、家で本を読むことにした。",
    "Στην άκρη του δρόμου υπάρχει ένα μικρό καφενείο.",
    "明天上午十点开会，请带上上周的报告和新的计划。",
    "Завтра нужно купить хлеб, молоко и немного сыра 🧀.",
    "오늘은 산에 올라가서 사진을 많이 찍었다.",
    "האוטובוס מגיע בשעה שמונה בבוקר.",
    "वह कल सुबह बाज़ार जाएगी और फल लाएगी।"};

constexpr std::array<std::string_view, 24> topics{
    "home",   "travel",  "recipes",  "books",   "work",     "money",  "health",  "ideas",
    "family", "journal", "music",    "school",  "projects", "people", "house",   "films",
    "sport",  "code",    "meetings", "letters", "birds",    "trees",  "writing", "games"};

std::string inventedWord(Random& random, std::size_t rank) {
  const std::size_t longest = rank < 400 ? 2 : rank < 6000 ? 3 : 4;
  std::string word;
  for (std::size_t syllables = random.between(1, longest); syllables > 0; --syllables) {
    word += onsets[random.below(onsets.size())];
    word += nuclei[random.below(nuclei.size())];
    word += codas[random.below(codas.size())];
  }
  return word;
}

bool holdsSearchedWord(std::string_view word) {
  return word.find(rareWord) != word.npos || word.find(commonWord) != word.npos ||
         word.find(twoLetterWord) != word.npos;
}

}  // namespace

Vocabulary::Vocabulary() : words_(frequent.begin(), frequent.end()) {
  Random random(1);
  std::set<std::string> known(words_.begin(), words_.end());
  while (words_.size() < wordCount) {
    std::string word = inventedWord(random, words_.size());
    if (word.size() < 3 || holdsSearchedWord(word) || !known.insert(word).second) continue;
    words_.push_back(std::move(word));
  }

  const auto weight = [](std::size_t rank) { return 1 / (static_cast<double>(rank) + 2.7); };
  double sum = 0;
  for (std::size_t rank = 0; rank < wordCount; ++rank) sum += weight(rank);
  draws_.reserve(drawCount);
  double reached = 0;
  for (std::size_t rank = 0; rank < wordCount; ++rank) {
    reached += weight(rank) / sum;
    const auto end = static_cast<std::size_t>(std::lround(reached * drawCount));
    while (draws_.size() < end) draws_.push_back(static_cast<std::uint16_t>(rank));
  }
}

std::string_view Vocabulary::accented(Random& random) {
  return accentedWords[random.below(accentedWords.size())];
}

std::string_view Vocabulary::foreign(Random& random) {
  return foreignSentences[random.below(foreignSentences.size())];
}

Tags::Tags(const Vocabulary& vocabulary) {
  Random random(2);
  std::set<std::string> known;
  const auto add = [&](std::string name) {
    if (known.insert(name).second) {
      families_.back().push_back(names_.size());
      names_.push_back(name);
    }
    return name;
  };
  for (const std::string_view topic : topics) {
    families_.emplace_back();
    const std::string top = add(std::string(topic));
    for (std::size_t children = random.between(4, 9); children > 0; --children) {
      const std::string child = add(top + "/" + vocabulary.word(random));
      for (std::size_t nested = random.below(3); nested > 0; --nested) {
        add(child + "/" + vocabulary.word(random));
      }
    }
  }
}

std::size_t Tags::draw(Random& random) const {
  // Squaring favours the first families, and within a family the topmost tag.
  const auto skewed = [&](std::size_t count) {
    const double fraction = random.fraction();
    return static_cast<std::size_t>(fraction * fraction * static_cast<double>(count));
  };
  const std::vector<std::size_t>& family = families_[skewed(families_.size())];
  return family[skewed(family.size())];
}

}  // namespace corpus
