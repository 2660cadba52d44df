#pragma once

#include <string_view>

namespace zephyrdown {

/// The Unicode scalars of an HTML named character reference, in hexadecimal and joined by "+": "E9"
/// for "eacute", "2242+338" for "nesim". Empty for an unknown name. `name` is given without "&" and
/// ";". The table is that of the HTML standard, https://html.spec.whatwg.org/entities.json, which
/// CommonMark takes as a whole.
std::string_view scalarsOfNamedEntity(std::string_view name);

}  // namespace zephyrdown
