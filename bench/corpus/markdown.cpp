#include "markdown.h"

namespace corpus {

void MarkdownWriter::words(std::size_t count) {
  for (; count > 0; --count) {
    if (accents > 0 && random_.chance(accents)) {
      text_ += Vocabulary::accented(random_);
    } else {
      text_ += vocabulary_.word(random_);
    }
    if (count > 1) text_ += random_.chance(0.06) ? ", " : " ";
  }
}

void MarkdownWriter::sentence() {
  if (foreignSentences > 0 && random_.chance(foreignSentences)) {
    text_ += Vocabulary::foreign(random_);
    return;
  }
  const std::size_t begin = text_.size();
  if (!planted.empty() && random_.chance(0.1)) {
    text_ += planted.back();
    text_ += ' ';
    planted.pop_back();
  }
  words(random_.between(4, 18));
  if (text_[begin] >= 'a' && text_[begin] <= 'z') {
    text_[begin] = static_cast<char>(text_[begin] - 'a' + 'A');
  }
  text_ += random_.chance(0.1) ? '?' : '.';
}

void MarkdownWriter::paragraph() {
  for (std::size_t sentences = random_.between(2, 7); sentences > 0; --sentences) {
    sentence();
    if (sentences > 1) text_ += ' ';
  }
  endBlock();
}

void MarkdownWriter::heading(int level, std::string_view headingWords) {
  text_.append(static_cast<std::size_t>(level), '#');
  text_ += ' ';
  text_ += headingWords;
  endBlock();
}

void MarkdownWriter::tagLine(const std::vector<std::string>& names) {
  if (names.empty()) return;
  for (const std::string& name : names) text_.append("#").append(name).append(" ");
  text_.pop_back();
  endBlock();
}

void MarkdownWriter::linkLine(std::string_view noteTitle) {
  text_ += "See [[";
  text_ += noteTitle;
  text_ += "]] and [";
  words(2);
  text_ += "](https://example.org/";
  text_ += vocabulary_.word(random_);
  text_ += ").";
  endBlock();
}

void MarkdownWriter::list(std::string_view marker, std::size_t items) {
  for (; items > 0; --items) {
    text_ += marker;
    words(random_.between(2, 9));
    text_ += '\n';
  }
  text_ += '\n';
}

void MarkdownWriter::toDos() {
  for (std::size_t items = random_.between(2, 6); items > 0; --items) {
    list(random_.chance(0.4) ? "- [x] " : "- [ ] ", 1);
    text_.pop_back();
  }
  text_ += '\n';
}

void MarkdownWriter::code() {
  text_ += "```\n";
  for (std::size_t lines = random_.between(2, 8); lines > 0; --lines) {
    text_ += "  " + vocabulary_.word(random_) + "." + vocabulary_.word(random_) + "(" +
             std::to_string(random_.below(1000)) + ");\n";
  }
  text_ += "```\n\n";
}

void MarkdownWriter::block() {
  switch (random_.below(20)) {
    case 0:
    case 1: {
      text_ += random_.chance(0.5) ? "## " : "### ";
      words(random_.between(1, 5));
      endBlock();
      break;
    }
    case 2:
    case 3:
    case 4:
      list(random_.chance(0.8) ? "- " : "1. ", random_.between(3, 7));
      break;
    case 5:
    case 6:
      toDos();
      break;
    case 7:
      code();
      break;
    case 8:
      text_ += "> ";
      sentence();
      endBlock();
      break;
    default:
      paragraph();
  }
}

std::string MarkdownWriter::finished() {
  if (!planted.empty()) {
    for (; !planted.empty(); planted.pop_back()) text_.append(planted.back()).append(" and ");
    words(3);
    text_ += ".\n";
  }
  return std::move(text_);
}

}  // namespace corpus
