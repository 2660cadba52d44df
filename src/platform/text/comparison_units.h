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

/// The form in which texts are compared, made one unit at a time. Inside this room only.
///
/// A unit is a scalar and the scalars behind it that attach to it. Nothing in normalisation or
/// case folding reaches from one unit into another, so that the comparison form of a text is the
/// comparison forms of its units in a row, and a place in the one is found in the other.
///
///   source            S   t   r   a   ß     e    U+0301
///   units, folded     s   t   r   a   s s   e U+0301
namespace platform::text {

/// Stands for an ill-formed part of a text: no scalar is equal to it.
inline constexpr char32_t kIllFormed = 0x110000;

/// Whether a scalar belongs to the unit of the one before it: combining marks (general category
/// M), and the conjoining vowels and finals of Hangul. That covers every scalar that composition
/// can join to an earlier one or that reordering can move.
bool attachesToPrevious(char32_t scalar);

/// Comparison forms of single scalars. Looking one up in Unicode's tables takes some tens of
/// nanoseconds, and a text uses few different ones, so that a small table remembers them.
class ScalarForms {
 public:
  struct Form {
    char32_t scalar = 0;  // the entry's key
    std::array<char32_t, 4> scalars{};
    std::uint8_t length = 0;
    bool attaches = false;
    // Canonical combining classes at both ends of NFD, and of the form itself. Where neither
    // falls from one scalar's end to the next one's beginning, no mark changes places, and the
    // form of the two is their forms in a row.
    struct CombiningClasses {
      std::uint8_t decomposed = 0, form = 0;
    };
    CombiningClasses lead, trail;
  };

  /// The one table of this thread, made on first use.
  static ScalarForms& shared(CaseFolding folding);

  /// Valid until the next call.
  const Form& of(char32_t scalar);

  CaseFolding folding() const { return folding_; }

 private:
  explicit ScalarForms(CaseFolding folding) : folding_(folding) {}
  Form make(char32_t scalar) const;

  CaseFolding folding_;
  std::array<Form, 2048> entries_;
  Form passing_;  // of a scalar that is its own form, by its block
};

/// Reads a text unit by unit.
class UnitReader {
 public:
  /// `position` is the start of a unit.
  UnitReader(std::string_view text, std::size_t position, ScalarForms& forms)
      : text_(text), begin_(position), end_(position), forms_(forms), scalars_(8) {}

  /// Goes on to the next unit; false at the text's end.
  bool next();

  /// Passes over units of plain ASCII whose scalar is not `wanted`, though perhaps not all.
  void skipASCIIUntil(char32_t wanted);
  void skipToEnd() { end_ = text_.size(); }

  std::size_t begin() const { return begin_; }  ///< of the unit, in the source
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
  std::vector<char32_t> scalars_;  // the unit's, and room behind them
  std::size_t length_ = 0;
  // The scalar at `ahead_`, which has been looked up to see whether it attaches.
  const ScalarForms::Form* form_ = nullptr;
  std::size_t ahead_ = static_cast<std::size_t>(-1);
  std::size_t behindAhead_ = 0;
};

/// The comparison form of a whole text, ill-formed parts read as U+FFFD.
std::string comparisonForm(std::string_view text, CaseFolding folding);

}  // namespace platform::text
