#pragma once

#include <string_view>

namespace zephyrdown {

/// The Unicode scalars that a named character reference of HTML stands for, in hexadecimal and
/// joined by "+": "E9" of "eacute", "2242+338" of "nesim". Empty for an unknown name.
/// `name` stands without "&" and ";". The table is that of the HTML standard,
/// https://html.spec.whatwg.org/entities.json, which CommonMark takes as a whole.
std::string_view scalarsOfNamedEntity(std::string_view name);

}  // namespace zephyrdown
