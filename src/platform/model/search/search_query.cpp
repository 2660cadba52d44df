#include "platform/model/search/search_query.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "platform/markdown/hashtag.h"
#include "platform/model/search/condition_kinds.h"
#include "platform/model/search/date_directives.h"
#include "platform/model/search/local_day.h"
#include "platform/text/characters.h"
#include "platform/text/controls.h"
#include "platform/text/utf8.h"

// A query is a sequence of words. A word is the first of these that it can be:
//
//   "..."            a phrase; \" and \\ stand for the character; one that is not closed goes to
//                    the query's end
//   #tag  #a b#      a tag, with a closing mark when its name has blanks
//   !#tag  #*/tag    exactly this tag; nested tags with this name in their path
//   @word  @word(x)  a directive
//   anything else    a term
//
// with "-" in front for its opposite, and `or` between two for one of them. `or` binds its two
// neighbours only: `a b or c` is a and (b or c).

namespace tavimodel {
namespace {

using platform::text::escapingControls;
using Kind = SearchCondition::Kind;

bool isASCIILetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// More conditions are not useful, and no query may keep the database busy for long.
constexpr int mostTerms = 2000;
constexpr int mostOtherConditions = 200;

std::string lowered(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

class Parser {
 public:
  Parser(std::string_view text, double now) : text_(text), now_(now) {}

  SearchQuery parse() {
    for (skipBlanks(); position_ < text_.size(); skipBlanks()) {
      if (readOr()) continue;
      std::optional<SearchCondition> condition = readCondition();
      if (!condition) continue;
      int& count = condition->kind == Kind::term ? terms_ : otherConditions_;
      if (++count > (condition->kind == Kind::term ? mostTerms : mostOtherConditions)) {
        throw SearchSyntaxError(
            fmt::format("The search query asks for too much at once: at most {} terms, and {} tags "
                        "and directives",
                        mostTerms, mostOtherConditions));
      }
      if (joinNext_) {
        query_.groups.back().push_back(std::move(*condition));
      } else {
        query_.groups.push_back({std::move(*condition)});
      }
      joinNext_ = false;
    }
    if (joinNext_) addTerm("or");  // without a right operand it is an ordinary word
    return std::move(query_);
  }

 private:
  void addTerm(std::string text) {
    query_.groups.push_back({{.kind = Kind::term, .text = std::move(text)}});
  }

  bool atBlank(std::size_t position) const {
    return platform::text::isWhitespace(platform::text::decodeScalar(text_, position).value);
  }

  void skipBlanks() {
    while (position_ < text_.size() && atBlank(position_)) {
      position_ = platform::text::decodeScalar(text_, position_).next;
    }
  }

  std::size_t endOfWord(std::size_t from) const {
    while (from < text_.size() && !atBlank(from)) {
      from = platform::text::decodeScalar(text_, from).next;
    }
    return from;
  }

  /// Reads an `or` that has a left operand; the next condition joins its group.
  bool readOr() {
    if (query_.groups.empty() || joinNext_) return false;
    // Does not look for the word's end: a query may be one word of a megabyte, which would then be
    // scanned repeatedly.
    const std::size_t end = position_ + 2;
    if (lowered(text_.substr(position_, 2)) != "or") return false;
    if (end < text_.size() && !atBlank(end)) return false;
    position_ = end;
    joinNext_ = true;
    return true;
  }

  /// Absent for a word without a condition of its own: an empty phrase, or @title.
  std::optional<SearchCondition> readCondition() {
    negated_ = text_[position_] == '-' && position_ + 1 < text_.size() && !atBlank(position_ + 1);
    if (negated_) ++position_;
    std::optional<SearchCondition> condition = readPositive();
    if (condition) condition->negated = negated_;
    return condition;
  }

  std::optional<SearchCondition> readPositive() {
    const std::string_view rest = text_.substr(position_);
    if (rest.starts_with('"')) return readPhrase();
    if (rest.starts_with("!#")) {
      if (auto tag = readTag(2, Kind::exactTag)) return tag;
    } else if (rest.starts_with("#*/")) {
      if (auto tag = readTag(3, Kind::subtag)) return tag;
    } else if (rest.starts_with('#')) {
      if (auto tag = readTag(1, Kind::tag)) return tag;
    } else if (rest.size() > 1 && rest[0] == '@' && isASCIILetter(rest[1])) {
      return readDirective();
    }
    const std::size_t end = endOfWord(position_);
    const std::size_t begin = std::exchange(position_, end);
    return SearchCondition{.kind = Kind::term,
                           .text = std::string(text_.substr(begin, end - begin))};
  }

  std::optional<SearchCondition> readPhrase() {
    std::string phrase;
    for (++position_; position_ < text_.size() && text_[position_] != '"'; ++position_) {
      const bool escape = text_[position_] == '\\' && position_ + 1 < text_.size() &&
                          (text_[position_ + 1] == '"' || text_[position_ + 1] == '\\');
      if (escape) ++position_;
      phrase += text_[position_];
    }
    if (position_ < text_.size()) ++position_;
    if (phrase.empty()) return std::nullopt;
    return SearchCondition{.kind = Kind::term, .text = std::move(phrase)};
  }

  /// The closing "#" of a tag name with blanks: the next "#" after `begin`, if it follows a
  /// character other than a blank and precedes a blank or the end. Absent otherwise.
  std::optional<std::size_t> closingMark(std::size_t begin) const {
    for (std::size_t i = begin; i < text_.size() && text_[i] != '"'; ++i) {
      if (text_[i] != '#') continue;
      const bool closes = i > begin && text_[i - 1] != ' ' && text_[i - 1] != '\t' &&
                          (i + 1 == text_.size() || atBlank(i + 1));
      return closes ? std::optional(i) : std::nullopt;
    }
    return std::nullopt;
  }

  std::optional<SearchCondition> readTag(std::size_t markLength, Kind kind) {
    const std::size_t begin = position_ + markLength;
    const std::optional<std::size_t> closing = closingMark(begin);
    const std::size_t end = closing ? *closing : endOfWord(begin);
    auto name = zephyrdown::ZDKHashtag::sanitizeTagName(text_.substr(begin, end - begin));
    if (!name) return std::nullopt;
    position_ = closing ? end + 1 : end;
    return SearchCondition{.kind = kind, .text = std::move(*name)};
  }

  std::optional<SearchCondition> readDirective() {
    const std::size_t end = endOfWord(position_);
    const std::string_view word = text_.substr(position_, end - position_);
    position_ = end;
    const std::string name = lowered(word.substr(1));
    if (name == "title") {
      query_.titlesOnly |= !negated_;
      return std::nullopt;
    }
    for (const ConditionKind& kind : conditionKinds) {
      if (kind.directive.empty() || kind.directive != name) continue;
      if (kind.kind == Kind::ocr) query_.ocrOnly |= !negated_;
      return SearchCondition{.kind = kind.kind};
    }
    if (auto dates = readDates(name)) return dates;
    refuseWithoutValue(word, name);
    throw SearchSyntaxError(fmt::format(
        "Unknown search directive: {0} — write \"{0}\" in quotes to search for the text",
        escapingControls(word)));
  }

  std::optional<SearchCondition> readDates(std::string_view name) const {
    for (const DateDirective& directive : dateDirectives) {
      const auto value = between(name, directive.begin, directive.end);
      if (!value || (directive.end.empty() && !value->empty())) continue;
      switch (directive.form) {
        case DateDirective::Form::today:
          return lastDays(directive.kind, 1);
        case DateDirective::Form::yesterday:
          return SearchCondition{
              .kind = directive.kind, .from = startOfDay(now_, -1), .to = startOfDay(now_, 0)};
        case DateDirective::Form::lastDays:
          return lastDays(directive.kind, number(*value));
        case DateDirective::Form::date:
          return onDate(directive.kind, *value);
      }
    }
    return std::nullopt;
  }

  static void refuseWithoutValue(std::string_view word, std::string_view name) {
    for (const auto& [begin, end, form, kind, example, finds] : dateDirectives) {
      const std::string_view bare = begin.substr(0, begin.find('('));
      if (end.empty() || name != bare) continue;
      throw SearchSyntaxError(fmt::format("Search directive without a value: {} — write it as @{}",
                                          escapingControls(word), example));
    }
  }

  static std::optional<std::string_view> between(std::string_view word, std::string_view prefix,
                                                 std::string_view suffix) {
    if (word.size() < prefix.size() + suffix.size() || !word.starts_with(prefix) ||
        !word.ends_with(suffix)) {
      return std::nullopt;
    }
    return word.substr(prefix.size(), word.size() - prefix.size() - suffix.size());
  }

  static int number(std::string_view digits) {
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size() || value < 1 ||
        value > 100'000) {
      throw SearchSyntaxError(
          fmt::format("Invalid number of days in the search query: '{}' — give a whole number, as "
                      "in @last7days",
                      escapingControls(digits)));
    }
    return value;
  }

  /// The last `days` days, including today.
  SearchCondition lastDays(Kind kind, int days) const {
    return {.kind = kind, .from = startOfDay(now_, 1 - days), .to = startOfDay(now_, 1)};
  }

  static SearchCondition onDate(Kind kind, std::string_view date) {
    const char relation = date.empty() ? '=' : date.front();
    const bool related = relation == '<' || relation == '>';
    const std::string_view day = related ? date.substr(1) : date;
    const auto begin = startOfDate(day, 0);
    if (!begin) {
      throw SearchSyntaxError(
          fmt::format("Invalid date in the search query: '{}' — write it as YYYY-MM-DD",
                      escapingControls(day)));
    }
    if (relation == '<') return {.kind = kind, .to = begin};
    if (relation == '>') return {.kind = kind, .from = startOfDate(day, 1)};
    return {.kind = kind, .from = begin, .to = startOfDate(day, 1)};
  }

  std::string_view text_;
  double now_;
  std::size_t position_ = 0;
  bool joinNext_ = false;
  bool negated_ = false;  ///< whether the current condition is negated
  int terms_ = 0;
  int otherConditions_ = 0;
  SearchQuery query_;
};

}  // namespace

SearchQuery parseSearchQuery(std::string_view text, double now) {
  return Parser(text, now).parse();
}

}  // namespace tavimodel
