#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "random.h"

namespace corpus {

/// The words that are searched for. No other word holds one of them.
inline constexpr std::string_view rareWord = "petrichor";  ///< in ten notes, whatever their number
inline constexpr std::string_view commonWord = "garden";   ///< in a third of the notes
inline constexpr std::string_view twoLetterWord = "ox";    ///< in one note of a hundred
/// The tag that is listed: about a tenth of the notes carry it or one below it.
inline constexpr std::string_view listedTag = "work";

/// 24,000 words, drawn about as often as words are in a language (Zipf: the second half as often as
/// the first, and so on).
class Vocabulary {
 public:
  Vocabulary();

  const std::string& word(Random& random) const { return words_[draws_[random.below(drawCount)]]; }
  /// An accented or otherwise not plain word.
  static std::string_view accented(Random& random);
  /// A sentence in another script.
  static std::string_view foreign(Random& random);

 private:
  static constexpr std::size_t drawCount = 1 << 20;
  std::vector<std::string> words_;
  std::vector<std::uint16_t> draws_;  ///< places in words_, each as often as its word is drawn
};

/// Some hundred nested tags, the ancestors included.
class Tags {
 public:
  explicit Tags(const Vocabulary& vocabulary);

  const std::vector<std::string>& names() const { return names_; }  ///< each once
  /// A place in `names`; some tags are far more frequent than others.
  std::size_t draw(Random& random) const;

 private:
  std::vector<std::string> names_;
  std::vector<std::vector<std::size_t>> families_;  ///< by topmost tag; it stands first
};

}  // namespace corpus
