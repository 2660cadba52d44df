#include "platform/markdown/hashtag_grammar.h"

#include <algorithm>
#include <array>

#include "platform/markdown/ascii.h"
#include "platform/markdown/entities.h"
#include "platform/markdown/lines.h"
#include "platform/text/characters.h"
#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace zephyrdown {
namespace {

using platform::text::decodeScalar;
using platform::text::isWhitespace;

struct ScalarRange {
  char32_t first, last;
};

// Longer or deeper names are plain text. Each level is a tag of its own, so that a name with n
// levels has n rows.
constexpr std::size_t kLongestName = 256;  // bytes
constexpr std::ptrdiff_t kMostLevels = 32;

// Marks outside ASCII that end a word like a comma or a bracket, in addition to Unicode's
// Terminal_Punctuation. The general category would include "·" and "№".
constexpr std::array kSentencePunctuation = {
    ScalarRange{0x00A1, 0x00A1}, ScalarRange{0x00AB, 0x00AB}, ScalarRange{0x00BB, 0x00BB},
    ScalarRange{0x00BF, 0x00BF}, ScalarRange{0x0589, 0x0589}, ScalarRange{0x060C, 0x060C},
    ScalarRange{0x061B, 0x061B}, ScalarRange{0x061F, 0x061F}, ScalarRange{0x06D4, 0x06D4},
    ScalarRange{0x0964, 0x0965}, ScalarRange{0x1361, 0x1368}, ScalarRange{0x2012, 0x2027},
    ScalarRange{0x2039, 0x203A}, ScalarRange{0x203D, 0x203D}, ScalarRange{0x3001, 0x3003},
    ScalarRange{0x3008, 0x3011}, ScalarRange{0x3014, 0x301F}, ScalarRange{0xFF01, 0xFF03},
    ScalarRange{0xFF08, 0xFF09}, ScalarRange{0xFF0C, 0xFF0C}, ScalarRange{0xFF0E, 0xFF0E},
    ScalarRange{0xFF1A, 0xFF1B}, ScalarRange{0xFF1F, 0xFF1F}, ScalarRange{0xFF3B, 0xFF3B},
    ScalarRange{0xFF3D, 0xFF3D}, ScalarRange{0xFF5B, 0xFF5B}, ScalarRange{0xFF5D, 0xFF5D},
    ScalarRange{0xFF5F, 0xFF65}};

bool isSentencePunctuation(char32_t scalar) {
  const auto* range =
      std::lower_bound(kSentencePunctuation.begin(), kSentencePunctuation.end(), scalar,
                       [](const ScalarRange& entry, char32_t value) { return entry.last < value; });
  if (range != kSentencePunctuation.end() && range->first <= scalar) return true;
  return platform::text::isTerminalPunctuation(scalar);
}

bool isControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

/// Whether a name may contain the character. Markup characters are excluded: a "*" in one tag would
/// form emphasis with one in the next tag.
bool isNameCharacter(char32_t c) {
  if (isControl(c)) return false;
  return c >= 0x80 || std::string_view("#*~`[]<|\\").find(static_cast<char>(c)) == npos;
}

/// Whether a word with this character is a name: "#123" and "#-" are not tags.
bool carriesWord(char32_t c) {
  return c >= 0x80 || isASCIILetter(c);
}

bool isLineBreakScalar(char32_t c) {
  return (c >= '\n' && c <= '\r') || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool holdsLineBreak(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const auto scalar = decodeScalar(text, at);
    if (isLineBreakScalar(scalar.value)) return true;
    at = scalar.next;
  }
  return false;
}

/// Trims the text, and replaces each run of white space by one blank.
std::string withSingleBlanks(std::string_view text) {
  std::string result;
  bool blank = false;
  text = platform::text::trimmingWhitespaceAndNewlines(text);
  for (std::size_t at = 0; at < text.size();) {
    const auto scalar = decodeScalar(text, at);
    if (!isWhitespace(scalar.value)) {
      if (blank) result += ' ';
      result.append(text.substr(at, scalar.next - at));
    }
    blank = isWhitespace(scalar.value);
    at = scalar.next;
  }
  return result;
}

bool holdsOnlyNameCharacters(std::string_view name) {
  bool speaks = false;
  for (std::size_t at = 0; at < name.size();) {
    const auto scalar = decodeScalar(name, at);
    if (!isNameCharacter(scalar.value)) return false;
    speaks |= carriesWord(scalar.value) || isASCIIDigit(scalar.value);
    at = scalar.next;
  }
  return speaks;
}

/// A character of a text, or of an entity in it.
struct Character {
  char32_t value;
  std::size_t next;  ///< the offset after it
  bool wellFormed;   ///< false for an ill-formed byte
};

Character characterAt(std::string_view text, std::size_t at) {
  if (text[at] == '&' && !isEscaped(text, at)) {
    const Entity entity = entityAt(text, at);
    if (entity.length > 0) return {entity.scalars.front(), at + entity.length, true};
  }
  const auto scalar = decodeScalar(text, at);
  return {scalar.value, scalar.next, scalar.wellFormed};
}

/// The character that ends at `end`, which must be greater than 0.
char32_t characterBefore(std::string_view text, std::size_t end) {
  const Entity entity = entityBefore(text, end);
  if (entity.length > 0 && !isEscaped(text, end - entity.length)) return entity.scalars.back();
  return decodeScalar(text, platform::text::previousScalar(text, end)).value;
}

std::string withoutEntities(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t next = text[at] == '&' ? characterAt(text, at).next : at + 1;
    if (next > at + 1) {
      appendEntity(result, text.substr(at, next - at));
    } else {
      result += text[at];
    }
    at = next;
  }
  return result;
}

/// Whether a tag may start directly after the text that ends at `at`, which must be greater than
/// `begin`: not inside a word, nor where "#" is a fragment, a colour or an operator. An asterisk
/// may precede it, whether or not it is emphasis.
bool mayStandBefore(std::string_view text, std::size_t at) {
  const char32_t last = characterBefore(text, at);
  if (last < 0x80) {
    return std::string_view(" \t\n\v\f\r([{\"',;|*~").find(static_cast<char>(last)) != npos;
  }
  const bool endsEmoji = last == 0xFE0F || last == 0x20E3;
  return endsEmoji || !platform::text::isAlphanumeric(last);
}

/// Reads single hashtags of one stretch.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  /// The hashtag whose "#" is at `hash`.
  std::optional<HashtagMention> read(std::size_t hash) const {
    if (hash + 1 >= text_.size() || !startsName(hash + 1)) return std::nullopt;
    auto mention = readClosed(hash);
    return mention ? mention : readWord(hash);
  }

 private:
  /// Not after "#" with a combining mark, which is another character: a keycap.
  bool startsName(std::size_t at) const {
    const char32_t scalar = characterAt(text_, at).value;
    if (scalar < 0x80) return scalar != '#' && scalar != '/' && !isWhitespace(scalar);
    return !isWhitespace(scalar) && !platform::text::extendsCharacter(scalar);
  }

  std::optional<HashtagMention> readClosed(std::size_t hash) const {
    const std::size_t close = nextHash(hash + 1);
    if (close == npos || close == hash + 1 || !closes(close)) return std::nullopt;
    auto name = canonicalTagName(withoutEntities(text_.substr(hash + 1, close - hash - 1)));
    if (!name) return std::nullopt;
    return HashtagMention{{hash, close + 1}, std::move(*name)};
  }

  /// The next "#" that is not part of an entity such as "&#8212;".
  std::size_t nextHash(std::size_t from) const {
    std::size_t hash = text_.find('#', from);
    while (hash != npos && characterAt(text_, hash - 1).next > hash)
      hash = text_.find('#', hash + 1);
    return hash;
  }

  bool closes(std::size_t close) const {
    if (isWhitespace(characterBefore(text_, close))) return false;
    if (close + 1 >= text_.size()) return true;
    const Character next = characterAt(text_, close + 1);
    return next.value != '#' && !(next.wellFormed && isTagCharacter(next.value));
  }

  std::optional<HashtagMention> readWord(std::size_t hash) const {
    const std::size_t wordEnd = endOfWord(hash + 1);
    const std::string word = withoutEntities(text_.substr(hash + 1, wordEnd - hash - 1));
    const bool speaks =
        std::any_of(word.begin(), word.end(), [](char c) { return carriesWord(byteOf(c)); });
    if (!speaks) return std::nullopt;
    auto name = canonicalTagName(word);
    if (!name) return std::nullopt;
    return HashtagMention{{hash, wordEnd}, std::move(*name)};
  }

  std::size_t endOfWord(std::size_t at) const {
    while (at < text_.size()) {
      const Character scalar = characterAt(text_, at);
      const bool inside = scalar.value == '.' ? isInnerDot(at) : isTagCharacter(scalar.value);
      if (!inside || !scalar.wellFormed) break;
      at = scalar.next;
    }
    return at;
  }

  /// Whether the dot is inside a name, as in "#v1.2" and not as in "#done.".
  bool isInnerDot(std::size_t at) const {
    return at + 1 < text_.size() &&
           platform::text::isAlphanumeric(characterAt(text_, at + 1).value);
  }

  std::string_view text_;
};

}  // namespace

bool isTagCharacter(char32_t scalar) {
  if (scalar < 0x80) {
    return isASCIILetter(scalar) || isASCIIDigit(scalar) ||
           std::string_view("_-/+&").find(static_cast<char>(scalar)) != npos;
  }
  return !isControl(scalar) && !isWhitespace(scalar) && !isSentencePunctuation(scalar);
}

bool isPlainTagName(std::string_view name) {
  bool hasLetter = false;
  std::ptrdiff_t slashes = 0;
  char last = '/';
  for (const char c : name) {
    if (isASCIILetter(byteOf(c))) {
      hasLetter = true;
    } else if (c == '/') {
      if (last == '/') return false;
      ++slashes;
    } else if (!isASCIIDigit(byteOf(c)) && std::string_view("_-+").find(c) == npos) {
      return false;
    }
    last = c;
  }
  return hasLetter && last != '/' && name.size() <= kLongestName && slashes < kMostLevels;
}

std::optional<std::string> canonicalTagName(std::string_view text) {
  if (isPlainTagName(text)) return std::string(text);
  if (!platform::text::isValidUTF8(text)) return std::nullopt;
  text = platform::text::trimmingWhitespaceAndNewlines(text);
  if (holdsLineBreak(text)) return std::nullopt;
  const std::string composed = platform::text::canonicallyComposed(text);
  std::string name;
  for (std::size_t begin = 0; begin <= composed.size();) {
    const std::size_t end = std::min(composed.find('/', begin), composed.size());
    const std::string level =
        withSingleBlanks(std::string_view(composed).substr(begin, end - begin));
    if (!name.empty() && !level.empty()) name += '/';
    name += level;
    begin = end + 1;
  }
  const bool isBounded =
      name.size() <= kLongestName && std::count(name.begin(), name.end(), '/') < kMostLevels;
  if (!isBounded || !holdsOnlyNameCharacters(name)) return std::nullopt;
  return name;
}

void findHashtags(std::string_view text, ByteRange stretch, bool opens,
                  std::vector<HashtagMention>& found) {
  const std::string_view upToEnd = text.substr(0, stretch.end);
  const Scanner scanner(upToEnd);
  std::size_t behindTag = npos;  // "#a🎉#b" is one tag, as "#a#b" is
  for (std::size_t hash = upToEnd.find('#', stretch.begin); hash != npos;) {
    const bool mayStart = hash == stretch.begin ? opens : mayStandBefore(text, hash);
    std::size_t next = hash + 1;
    if (auto mention = mayStart && hash != behindTag ? scanner.read(hash) : std::nullopt) {
      next = behindTag = mention->range.end;
      found.push_back(std::move(*mention));
    }
    hash = upToEnd.find('#', next);
  }
}

}  // namespace zephyrdown
