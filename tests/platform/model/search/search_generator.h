#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace tavimodel {

/// Generates random notes, changes and queries.
class SearchGenerator {
 public:
  std::size_t below(std::size_t limit) { return random_() % limit; }
  bool oneIn(std::size_t n) { return below(n) == 0; }

  template <std::size_t N>
  std::string oneOf(const char* const (&choices)[N]) {
    return choices[below(N)];
  }

  std::string word() {
    static constexpr const char* kWords[] = {
        "a",      "b",       "ab",     "abc",   "Abcd", "ÉTÉ",    "été", "e\u0301t\u00E9",
        "straße", "STRASSE", "日本語", "本",    "\"",   "\\",     "ﬁn",  "fin",
        "x-y",    "ΑΒΓς",    "αβγσ",   "İx",    "ı",    "e",      "é",   "%_",
        "'",      "or",      "#draft", "@todo", "🎉",    "invoice"};
    return oneOf(kWords);
  }

  std::string title() {
    static constexpr const char* kTitles[] = {"Plan",        "plan", "AC/DC", "Ärger",
                                              "A\u0308rger", "",     "été",   "Plan/B"};
    return oneOf(kTitles);
  }

  std::string tag() {
    static constexpr const char* kTags[] = {"work",      "work/draft", "draft",
                                            "two words", "Work",       "workshop",
                                            "日本/本",   "a/draft/x",  "é"};
    return oneOf(kTags);
  }

  std::string text() {
    if (oneIn(12)) return oneIn(2) ? "" : " \n\t\n";
    std::string result = oneIn(5) ? "" : "# " + title() + "\n";
    for (std::size_t n = below(8); n > 0; --n) result += (oneIn(4) ? "" : " ") + piece();
    return result;
  }

  std::string date() {
    if (oneIn(10)) return "NULL";
    return std::to_string(now - 86400.0 * 6 + static_cast<double>(below(86400 * 10)));
  }

  std::string query() {
    std::string result;
    for (std::size_t n = 1 + below(3); n > 0; --n) {
      if (oneIn(10)) result += oneIn(3) ? "-@title " : "@TITLE ";
      for (std::size_t m = oneIn(3) ? 2 + below(2) : 1; m > 0; --m) {
        result += (oneIn(3) ? "-" : "") + condition() + (m > 1 ? " or " : "  ");
      }
    }
    return result;
  }

  static constexpr double now = 1'711'886'400;  // in Berlin, the day that has 23 hours

 private:
  std::string piece() {
    static constexpr const char* kPieces[] = {
        "\n- [ ] open", "\n- [x] closed\n", "![](a.png)",      "`code`",     "[[Plan]]",
        "[[Plan/B]]",   "[[AC\\/DC]]",      "[[ärger|alias]]", "[f](f.pdf)", "\n\n"};
    if (oneIn(6)) return " #" + tag() + "# ";
    return oneIn(3) ? oneOf(kPieces) : word();
  }

  std::string condition() {
    static constexpr const char* kDirectives[] = {
        "@todo",      "@done",     "@task",  "@tagged",    "@untagged",  "@pinned",     "@images",
        "@files",     "@code",     "@ocr",   "@empty",     "@wikilinks", "@locked",     "@readonly",
        "@backlinks", "@untitled", "@Today", "@yesterday", "@ctoday",    "@attachments"};
    static constexpr const char* kMarks[] = {"#", "!#", "#*/"};
    if (oneIn(2)) return term();
    if (oneIn(3)) return oneOf(kMarks) + tag() + "#";
    return oneIn(4) ? datesCondition() : oneOf(kDirectives);
  }

  std::string term() {
    std::string text = word();
    for (std::size_t n = oneIn(3) ? below(3) : 0; n > 0; --n)
      text += (oneIn(2) ? " " : "") + word();
    std::string escaped;
    for (const char c : text)
      escaped += (c == '"' || c == '\\') ? std::string{'\\', c} : std::string{c};
    const bool isPlain = text.find_first_of(" \"\\#@") == std::string::npos && text != "or";
    return isPlain && oneIn(2) ? text : "\"" + escaped + "\"";
  }

  std::string datesCondition() {
    static constexpr const char* kNames[] = {"@date", "@cdate"};
    static constexpr const char* kRelations[] = {"", "<", ">"};
    if (oneIn(3)) return (oneIn(2) ? "@last" : "@created") + std::to_string(1 + below(5)) + "days";
    const std::string day = std::to_string(25 + below(8) % 7);
    return oneOf(kNames) + "(" + oneOf(kRelations) + "2024-03-" + day + ")";
  }

  std::mt19937 random_{20240331};
};

}  // namespace tavimodel
