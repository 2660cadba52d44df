#pragma once

#include <string_view>
#include <vector>

#include "platform/text/folding.h"

/// Internal to this room.
namespace platform::text {

/// A scalar outside ASCII whose comparison form is all ASCII: the Kelvin sign is "K", and, ignoring
/// case, "ß" is "ss". With such a scalar, a text may match an ASCII needle that its bytes do not
/// contain. A test compares the list with Unicode's data.
struct Lookalike {
  std::string_view scalar;
  std::string_view form;   ///< with CaseFolding::full
  std::string_view exact;  ///< with CaseFolding::none; empty if it is not ASCII
};

inline constexpr Lookalike kLookalikes[] = {
    {"\u00DF", "ss", ""}, {"\u017F", "s", ""},   {"\u037E", ";", ";"},  {"\u1E9E", "ss", ""},
    {"\u1FEF", "`", "`"}, {"\u212A", "k", "K"},  {"\uFB00", "ff", ""},  {"\uFB01", "fi", ""},
    {"\uFB02", "fl", ""}, {"\uFB03", "ffi", ""}, {"\uFB04", "ffl", ""}, {"\uFB05", "st", ""},
    {"\uFB06", "st", ""}};

/// The scalars of kLookalikes that can be part of a match of `needle`, which must be ASCII.
std::vector<std::string_view> lookalikesIn(std::string_view needle, CaseFolding folding);

}  // namespace platform::text
