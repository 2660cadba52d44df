#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "vocabulary.h"

namespace corpus {

/// Writes one note's text, block by block.
class MarkdownWriter {
 public:
  MarkdownWriter(const Vocabulary& vocabulary, Random& random)
      : vocabulary_(vocabulary), random_(random) {}

  double accents = 0;                     ///< the part of the words that is accented
  double foreignSentences = 0;            ///< the part of the sentences that is in another script
  std::vector<std::string_view> planted;  ///< to be worked into sentences, each once

  void heading(int level, std::string_view words);
  void tagLine(const std::vector<std::string>& names);
  void linkLine(std::string_view noteTitle);
  /// A paragraph, or now and then a heading, a list, some to-dos, code, a quotation.
  void block();

  const std::string& text() const { return text_; }
  /// The text, with what is still to be planted in a last sentence.
  std::string finished();

 private:
  void words(std::size_t count);
  void sentence();
  void paragraph();
  void list(std::string_view marker, std::size_t items);
  void toDos();
  void code();
  void endBlock() { text_ += "\n\n"; }

  const Vocabulary& vocabulary_;
  Random& random_;
  std::string text_;
};

}  // namespace corpus
