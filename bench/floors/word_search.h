#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace floors {

/// The position of `word`, of at least two lower-case ASCII letters, in the text at or after
/// `from`, ignoring ASCII case. The text's size if it is not found.
///
/// Compares the first two letters at 64 positions at a time, in a form that compilers vectorize.
inline std::size_t findWord(std::string_view text, std::string_view word, std::size_t from = 0) {
  constexpr std::size_t block = 64;
  constexpr unsigned char small = 0x20;
  const auto letter = [&](std::size_t at) { return static_cast<unsigned char>(text[at]) | small; };
  const auto isAt = [&](std::size_t at) {
    for (std::size_t i = 0; i < word.size(); ++i) {
      if (letter(at + i) != static_cast<unsigned char>(word[i])) return false;
    }
    return true;
  };
  const auto first = static_cast<unsigned char>(word[0]);
  const auto second = static_cast<unsigned char>(word[1]);
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
  while (from + word.size() <= text.size()) {
    if (from + block + word.size() <= text.size()) {
      unsigned char any = 0;
      for (std::size_t i = from; i < from + block; ++i) {
        const bool here = (bytes[i] | small) == first;
        const bool next = (bytes[i + 1] | small) == second;
        any = static_cast<unsigned char>(any | (here & next));
      }
      if (any == 0) {
        from += block;
        continue;
      }
    }
    const std::size_t end = from + block;
    for (; from < end && from + word.size() <= text.size(); ++from) {
      if (isAt(from)) return from;
    }
  }
  return text.size();
}

/// An FTS5 query for all trigrams of the word, which every note with the word has.
inline std::string trigramQuery(std::string_view word) {
  std::string query;
  for (std::size_t i = 0; i + 3 <= word.size(); ++i) {
    if (i > 0) query += " AND ";
    query.append("\"").append(word.substr(i, 3)).append("\"");
  }
  return query;
}

inline std::size_t countWord(std::string_view text, std::string_view word) {
  std::size_t count = 0;
  for (std::size_t at = findWord(text, word); at < text.size();
       at = findWord(text, word, at + word.size())) {
    ++count;
  }
  return count;
}

}  // namespace floors
