#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
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
    // Canonical combining classes at both ends of NFD, and of the form itself.
    std::uint8_t decomposedLead = 0, decomposedTrail = 0, lead = 0, trail = 0;

    /// Whether the form of the sequence is the one form behind the other: no mark changes places.
    bool canBeFollowedBy(const Form& next) const {
      return (next.decomposedLead == 0 || decomposedTrail <= next.decomposedLead) &&
             (next.lead == 0 || trail <= next.lead);
    }
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
      : text_(text), begin_(position), end_(position), forms_(forms) {}

  /// Goes on to the next unit; false at the text's end.
  bool next();

  /// Passes over units of plain ASCII, though perhaps not all.
  void skipASCII();
  void skipToEnd() { end_ = text_.size(); }

  std::size_t begin() const { return begin_; }  ///< of the unit, in the source
  std::size_t end() const { return end_; }
  const std::vector<char32_t>& scalars() const { return scalars_; }

 private:
  void append(const ScalarForms::Form& form);
  void readMarks(ScalarForms::Form last);

  std::string_view text_;
  std::size_t begin_;
  std::size_t end_;
  ScalarForms& forms_;
  std::vector<char32_t> scalars_;
};

/// The comparison form of a whole text, ill-formed parts read as U+FFFD.
std::string comparisonForm(std::string_view text, CaseFolding folding);

}  // namespace platform::text
