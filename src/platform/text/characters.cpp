#include "platform/text/characters.h"

#include <unicode/uchar.h>

#include "platform/text/utf8.h"

namespace platform::text {
namespace {

constexpr char32_t kFirstCombiningMark = 0x300;

constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);

UGraphemeClusterBreak breakClass(char32_t scalar) {
  return static_cast<UGraphemeClusterBreak>(
      u_getIntPropertyValue(static_cast<UChar32>(scalar), UCHAR_GRAPHEME_CLUSTER_BREAK));
}

bool isPictographic(char32_t scalar) {
  return u_hasBinaryProperty(static_cast<UChar32>(scalar), UCHAR_EXTENDED_PICTOGRAPHIC);
}

bool isControl(UGraphemeClusterBreak c) {
  return c == U_GCB_CONTROL || c == U_GCB_CR || c == U_GCB_LF;
}

/// Rules GB6 to GB8.
bool joinsHangul(UGraphemeClusterBreak before, UGraphemeClusterBreak after) {
  switch (before) {
    case U_GCB_L:
      return after == U_GCB_L || after == U_GCB_V || after == U_GCB_LV || after == U_GCB_LVT;
    case U_GCB_LV:
    case U_GCB_V:
      return after == U_GCB_V || after == U_GCB_T;
    case U_GCB_LVT:
    case U_GCB_T:
      return after == U_GCB_T;
    default:
      return false;
  }
}

/// Scalars below the first combining mark, and Chinese characters. There is a boundary between any
/// two of them except CR LF, so most texts need no look-up in ICU's tables.
bool isOrdinary(char32_t scalar) {
  return scalar < kFirstCombiningMark || (scalar >= 0x4E00 && scalar <= 0x9FFF);
}

/// Whether two adjacent bytes are two characters: both ASCII, and not CR LF. This fast path covers
/// most of a text.
bool areCharacters(char left, char right) {
  return ((left | right) & 0x80) == 0 && !(left == '\r' && right == '\n');
}

/// Steps over the characters of one text in either direction.
class Characters {
 public:
  explicit Characters(std::string_view text) : text_(text) {}

  /// The end of the character at `position`, which is not the text's end.
  std::size_t following(std::size_t position) {
    if (position + 1 < text_.size() && areCharacters(text_[position], text_[position + 1])) {
      return position + 1;
    }
    std::size_t last = position;
    position = decodeScalar(text_, position).next;
    while (position < text_.size() && !isBoundary(position, last)) {
      last = position;
      position = decodeScalar(text_, position).next;
    }
    return position;
  }

  /// The start of the character before `position`, which is above 0.
  std::size_t preceding(std::size_t position) {
    if (position > 1 && areCharacters(text_[position - 2], text_[position - 1])) {
      return position - 1;
    }
    position = previousScalar(text_, position);
    while (position > 0) {
      const std::size_t before = previousScalar(text_, position);
      if (isBoundary(position, before)) break;
      position = before;
    }
    return position;
  }

 private:
  /// Whether there is a boundary at `position`, the end of the scalar at `before`. Follows the
  /// order of the rules in UAX #29, section 3.1.1.
  bool isBoundary(std::size_t position, std::size_t before) {
    const char32_t left = decodeScalar(text_, before).value;
    const char32_t right = decodeScalar(text_, position).value;
    if (left == '\r' && right == '\n') return false;  // GB3
    if (isOrdinary(left) && isOrdinary(right)) return true;
    const UGraphemeClusterBreak l = breakClass(left);
    const UGraphemeClusterBreak r = breakClass(right);
    if (isControl(l) || isControl(r)) return true;                                     // GB4, GB5
    if (joinsHangul(l, r)) return false;                                               // GB6 to GB8
    if (r == U_GCB_EXTEND || r == U_GCB_ZWJ || r == U_GCB_SPACING_MARK) return false;  // GB9, GB9a
    if (l == U_GCB_PREPEND) return false;                                              // GB9b
    if (l == U_GCB_ZWJ && isPictographic(right)) return !endsInPictograph(before);     // GB11
    if (l == U_GCB_REGIONAL_INDICATOR && r == l) return pairsAreCompleteAt(position);  // GB12, 13
    return true;                                                                       // GB999
  }

  /// Whether a pictograph, possibly with extending scalars, ends at `position`.
  bool endsInPictograph(std::size_t position) const {
    while (position > 0) {
      position = previousScalar(text_, position);
      const char32_t scalar = decodeScalar(text_, position).value;
      if (isPictographic(scalar)) return true;
      if (breakClass(scalar) != U_GCB_EXTEND) return false;
    }
    return false;
  }

  /// Flags are pairs of regional indicators, counted from the start of their run. The start is
  /// cached, so that a long run is scanned only once.
  bool pairsAreCompleteAt(std::size_t position) {
    if (position < runStart_ || position > runEnd_) {
      runStart_ = position;
      runEnd_ = position;
      while (runStart_ > 0) {
        const std::size_t previous = previousScalar(text_, runStart_);
        if (breakClass(decodeScalar(text_, previous).value) != U_GCB_REGIONAL_INDICATOR) break;
        runStart_ = previous;
      }
    }
    runEnd_ = position + 4;  // the next indicator belongs to the run; each has 4 bytes
    return (position - runStart_) % 8 == 0;
  }

  std::string_view text_;
  std::size_t runStart_ = kUnknown;
  std::size_t runEnd_ = 0;
};

}  // namespace

std::size_t stepBackCharacters(std::string_view text, std::size_t position, std::size_t count) {
  Characters characters(text);
  for (; count > 0 && position > 0; --count) position = characters.preceding(position);
  return position;
}

std::size_t stepForwardCharacters(std::string_view text, std::size_t position, std::size_t count) {
  Characters characters(text);
  for (; count > 0 && position < text.size(); --count) position = characters.following(position);
  return position;
}

std::size_t characterCount(std::string_view text) {
  Characters characters(text);
  std::size_t count = 0;
  for (std::size_t position = 0; position < text.size(); ++count) {
    position = characters.following(position);
  }
  return count;
}

bool isAlphanumeric(char32_t scalar) {
  if (scalar < 0x80) {
    return (scalar >= '0' && scalar <= '9') || ((scalar | 0x20) >= 'a' && (scalar | 0x20) <= 'z');
  }
  return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) &
          (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

bool extendsCharacter(char32_t scalar) {
  if (scalar < kFirstCombiningMark) return false;
  const UGraphemeClusterBreak c = breakClass(scalar);
  return c == U_GCB_EXTEND || c == U_GCB_ZWJ || c == U_GCB_SPACING_MARK ||
         (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & U_GC_M_MASK) != 0;
}

bool isTerminalPunctuation(char32_t scalar) {
  return u_hasBinaryProperty(static_cast<UChar32>(scalar), UCHAR_TERMINAL_PUNCTUATION) != 0;
}

bool isWhitespace(char32_t scalar) {
  if (scalar <= ' ') return scalar == ' ' || (scalar >= '\t' && scalar <= '\r');
  if (scalar < 0x1680) return scalar == 0x85 || scalar == 0xA0;
  return scalar == 0x1680 || (scalar >= 0x2000 && scalar <= 0x200A) || scalar == 0x2028 ||
         scalar == 0x2029 || scalar == 0x202F || scalar == 0x205F || scalar == 0x3000;
}

}  // namespace platform::text
