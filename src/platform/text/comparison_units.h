#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/folding.h"
#include "platform/text/utf8.h"

/// Converts texts to the form in which they are compared, unit by unit. Internal to this room.
///
/// A unit is a scalar and the following scalars that attach to it. Normalisation and case folding
/// never cross a unit boundary. So the comparison form of a text is the concatenation of those of
/// its units, and offsets can be mapped between the two.
///
///   source            S   t   r   a   ß     e    U+0301
///   units, folded     s   t   r   a   s s   e U+0301
namespace platform::text {

/// Represents an ill-formed part of a text; it differs from all scalars.
inline constexpr char32_t kIllFormed = 0x110000;

/// Whether a scalar belongs to the unit of the previous one: combining marks (general category M),
/// and the conjoining vowels and finals of Hangul. These include all scalars that composition can
/// join to an earlier one, or that canonical ordering can move.
bool attachesToPrevious(char32_t scalar);

/// A cache of the comparison forms of single scalars. A look-up in Unicode's tables takes tens of
/// nanoseconds, and a text has few different scalars.
class ScalarForms {
 public:
  /// The comparison form of one scalar.
  struct Form {
    char32_t scalar = 0;  // the cache key
    std::array<char32_t, 4> scalars{};
    std::uint8_t length = 0;
    bool attaches = false;
    // Canonical combining classes at both ends of the NFD and of the form. If neither class
    // decreases from the end of one scalar to the start of the next, no marks are reordered, and
    // the two forms can be concatenated.
    struct CombiningClasses {
      std::uint8_t decomposed = 0, form = 0;
    };
    CombiningClasses lead, trail;
  };

  /// The cache of this thread, created on first use.
  static ScalarForms& shared(CaseFolding folding);

  /// Valid until the next call.
  const Form& of(char32_t scalar);

  CaseFolding folding() const { return folding_; }

 private:
  explicit ScalarForms(CaseFolding folding) : folding_(folding) {}
  Form make(char32_t scalar) const;

  CaseFolding folding_;
  std::array<Form, 2048> entries_;
  Form passing_;  // of a scalar that is not cached, as its whole block is its own form
};

/// Reads a text unit by unit.
class UnitReader {
 public:
  /// `position` is the start of a unit.
  UnitReader(std::string_view text, std::size_t position, ScalarForms& forms)
      : text_(text), begin_(position), end_(position), forms_(forms), scalars_(8) {}

  /// Advances to the next unit; false at the text's end.
  bool next();

  /// Skips units of plain ASCII that differ from `wanted`, but not necessarily all of them.
  void skipASCIIUntil(char32_t wanted);
  /// Skips units of plain ASCII, and appends their forms.
  void appendASCII(std::string& out);
  void skipToEnd() { end_ = text_.size(); }

  std::size_t begin() const { return begin_; }  ///< byte offset of the unit in the source
  std::size_t end() const { return end_; }
  std::span<const char32_t> scalars() const { return {scalars_.data(), length_}; }

 private:
  bool isASCIIAt(std::size_t position) const {
    return static_cast<unsigned char>(text_[position]) < 0x80;
  }
  char32_t folded(char ascii) const;
  void lookAhead();
  void appendAhead();
  void readMarks();
  void readAgainInOrder();

  std::string_view text_;
  std::size_t begin_;
  std::size_t end_;
  ScalarForms& forms_;
  std::vector<char32_t> scalars_;  // the unit's scalars, followed by unused space
  std::size_t length_ = 0;
  // The form of the scalar at `ahead_`, the look-ahead that ends the unit if it does not attach.
  const ScalarForms::Form* form_ = nullptr;
  std::size_t ahead_ = static_cast<std::size_t>(-1);
  std::size_t behindAhead_ = 0;
};

/// Lower-cases the letters in `size` bytes, all of which must be ASCII.
void lowercaseASCII(char* bytes, std::size_t size);

/// The comparison form of a whole text. Ill-formed parts become U+FFFD.
std::string comparisonForm(std::string_view text, CaseFolding folding);

}  // namespace platform::text
