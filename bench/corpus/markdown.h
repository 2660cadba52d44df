#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "vocabulary.h"

namespace corpus {

/// Generates the text of one note, block by block.
class MarkdownWriter {
 public:
  MarkdownWriter(const Vocabulary& vocabulary, Random& random)
      : vocabulary_(vocabulary), random_(random) {}

  double accents = 0;                     ///< the share of words with accents, 0 to 1
  double foreignSentences = 0;            ///< the share of sentences in another script, 0 to 1
  std::vector<std::string_view> planted;  ///< words to insert into sentences, once each

  void heading(int level, std::string_view words);
  void tagLine(const std::vector<std::string>& names);
  void linkLine(std::string_view noteTitle);
  /// A paragraph or, less often, a heading, a list, to-dos, code or a block quote.
  void block();

  const std::string& text() const { return text_; }
  /// The text, with a last sentence for the words of `planted` that are left.
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
