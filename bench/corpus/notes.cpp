#include "notes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "markdown.h"

namespace corpus {
namespace {

// Seeds of Random, one per kind of data, so that no two kinds draw the same numbers.
constexpr std::uint64_t noteKind = 10;
constexpr std::uint64_t titleKind = 11;
constexpr std::uint64_t textKind = 12;

constexpr double lastDay = 1'717'200'000;  // 2024-06-01
constexpr double tenYears = 10 * 365.25 * 86'400;

std::string identifier(Random& random) {
  const std::uint64_t a = random.next();
  const std::uint64_t b = random.next();
  std::array<char, 37> text{};
  std::snprintf(text.data(), text.size(), "%08X-%04X-4%03X-%04X-%012llX",
                static_cast<unsigned>(a >> 32), static_cast<unsigned>(a >> 16 & 0xFFFF),
                static_cast<unsigned>(a & 0xFFF), static_cast<unsigned>(b >> 48 & 0x3FFF) | 0x8000U,
                static_cast<unsigned long long>(b & 0xFFFF'FFFF'FFFF));
  return text.data();
}

/// The length of a text in bytes. Lengths of texts are log-normal: many are short, some very long.
/// The mean is 2,350 bytes, including the part of the last block beyond the length drawn here.
std::size_t textLength(Random& random) {
  constexpr double spread = 0.8;
  const double median = 2'180 / std::exp(spread * spread / 2);
  const double radius = std::sqrt(-2 * std::log(1 - random.fraction()));
  const double normal = radius * std::cos(2 * std::numbers::pi * random.fraction());
  return static_cast<std::size_t>(std::clamp(median * std::exp(spread * normal), 60.0, 40'000.0));
}

std::size_t tagCount(Random& random) {
  constexpr std::array<std::size_t, 10> counts{0, 1, 1, 1, 2, 2, 2, 3, 4, 5};
  return counts[random.below(counts.size())];
}

}  // namespace

std::string Notes::title(std::size_t index) const {
  Random random(titleKind, index);
  std::string title;
  for (std::size_t words = random.between(2, 6); words > 0; --words) {
    if (!title.empty()) title += ' ';
    title +=
        random.chance(0.01) ? std::string(Vocabulary::accented(random)) : vocabulary_.word(random);
  }
  title[0] =
      static_cast<char>(title[0] >= 'a' && title[0] <= 'z' ? title[0] - 'a' + 'A' : title[0]);
  return title;
}

Note Notes::withoutText(std::size_t index) const {
  Random random(noteKind, index);
  Note note;
  note.uniqueIdentifier = identifier(random);
  note.title = title(index);
  for (std::size_t count = tagCount(random); count > 0; --count) {
    note.tags.push_back(tags_.draw(random));
  }
  const auto byName = [&](std::size_t a, std::size_t b) {
    return tags_.names()[a] < tags_.names()[b];
  };
  std::sort(note.tags.begin(), note.tags.end(), byName);
  note.tags.erase(std::unique(note.tags.begin(), note.tags.end()), note.tags.end());

  const double age = 1 - static_cast<double>(index) / static_cast<double>(count_);
  note.created = std::floor(lastDay - tenYears * age);
  // Most notes are last changed soon after their creation. The fraction makes the dates unique.
  const double kept = random.fraction();
  note.modified = std::floor(note.created + (lastDay - note.created) * kept * kept * kept) +
                  static_cast<double>(index) / static_cast<double>(count_ + 1);
  const double place = random.fraction();
  if (place < 0.02) note.location = Location::trash;
  if (place > 0.95) note.location = Location::archive;
  note.pinned = random.chance(0.003);
  return note;
}

Note Notes::note(std::size_t index) const {
  Note note = withoutText(index);
  Random random(textKind, index);
  MarkdownWriter writer(vocabulary_, random);
  const double script = random.fraction();
  if (script < 0.10) writer.accents = 0.03;
  if (script > 0.98) writer.foreignSentences = 0.8;
  const auto plant = [&](std::string_view word, std::size_t most) {
    for (std::size_t times = random.between(1, most); times > 0; --times) {
      writer.planted.push_back(word);
    }
  };
  if (random.below(3) == 0) plant(commonWord, 4);
  if (random.below(100) == 0) plant(twoLetterWord, 2);
  const std::size_t step = std::max<std::size_t>(count_ / 10, 1);
  if (index % step == step / 2) plant(rareWord, 3);

  writer.heading(1, note.title);
  std::vector<std::string> names;
  for (const std::size_t tag : note.tags) names.push_back(tags_.names()[tag]);
  writer.tagLine(names);
  const std::size_t length = textLength(random);
  while (writer.text().size() < length) {
    writer.block();
    if (random.chance(0.04)) writer.linkLine(title(random.below(count_)));
  }
  note.text = writer.finished();
  return note;
}

Note Notes::hugeNote(std::size_t bytes) const {
  Note note = withoutText(count_);
  note.title = "Everything";
  note.tags.clear();
  note.location = Location::notes;
  Random random(textKind, count_);
  MarkdownWriter writer(vocabulary_, random);
  writer.heading(1, note.title);
  for (std::size_t place = 1; place <= 10; ++place) {
    while (writer.text().size() < bytes / 10 * place) writer.block();
    writer.planted.push_back(rareWord);
  }
  note.text = writer.finished();
  return note;
}

}  // namespace corpus
