#pragma once

#include <string>

namespace zephyrdown {

/// Checks the properties that every text must have, as gtest expectations: it parses and comes back
/// unchanged, and each operation changes its own ranges only and does what it says.
void checkText(const std::string& text);

}  // namespace zephyrdown
