#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "random.h"

namespace corpus {

// The words that benchmarks search for. No other word contains one of them.
inline constexpr std::string_view rareWord = "petrichor";  ///< in ten notes of any corpus
inline constexpr std::string_view commonWord = "garden";   ///< in a third of the notes
inline constexpr std::string_view twoLetterWord = "ox";    ///< in one note of a hundred
/// The tag that benchmarks list: about a tenth of the notes have it or a descendant.
inline constexpr std::string_view listedTag = "work";

/// 24,000 words, drawn about as often as words of a language (Zipf's law: the second word half as
/// often as the first, and so on).
class Vocabulary {
 public:
  Vocabulary();

  const std::string& word(Random& random) const { return words_[draws_[random.below(drawCount)]]; }
  /// A word with non-ASCII letters.
  static std::string_view accented(Random& random);
  /// A sentence in another script.
  static std::string_view foreign(Random& random);

 private:
  static constexpr std::size_t drawCount = 1 << 20;
  std::vector<std::string> words_;
  std::vector<std::uint16_t> draws_;  ///< indexes into words_, repeated by frequency
};

/// Some hundred nested tags, including their ancestors.
class Tags {
 public:
  explicit Tags(const Vocabulary& vocabulary);

  const std::vector<std::string>& names() const { return names_; }  ///< without repeats
  /// A random index into `names`; some tags are far more frequent than others.
  std::size_t draw(Random& random) const;

 private:
  std::vector<std::string> names_;
  std::vector<std::vector<std::size_t>> families_;  ///< a topmost tag and its descendants each
};

}  // namespace corpus
