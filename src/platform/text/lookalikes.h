#pragma once

#include <string_view>
#include <vector>

#include "platform/text/folding.h"

/// Inside this room only.
namespace platform::text {

/// A scalar outside ASCII whose comparison form is ASCII through and through: the Kelvin sign is
/// "K", and without case "ß" is "ss". Where such a scalar is about, a text may match an ASCII
/// needle that its bytes do not show. A test draws the list from Unicode's data.
struct Lookalike {
  std::string_view scalar;
  std::string_view form;   ///< with CaseFolding::full
  std::string_view exact;  ///< with CaseFolding::none; empty when it is not ASCII
};

inline constexpr Lookalike kLookalikes[] = {
    {"\u00DF", "ss", ""}, {"\u017F", "s", ""},   {"\u037E", ";", ";"},  {"\u1E9E", "ss", ""},
    {"\u1FEF", "`", "`"}, {"\u212A", "k", "K"},  {"\uFB00", "ff", ""},  {"\uFB01", "fi", ""},
    {"\uFB02", "fl", ""}, {"\uFB03", "ffi", ""}, {"\uFB04", "ffl", ""}, {"\uFB05", "st", ""},
    {"\uFB06", "st", ""}};

/// The scalars of the list that can be part of a match of `needle`, which is ASCII.
std::vector<std::string_view> lookalikesIn(std::string_view needle, CaseFolding folding);

}  // namespace platform::text
