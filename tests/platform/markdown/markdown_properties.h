#pragma once

#include <string>

namespace zephyrdown {

/// Checks, with gtest expectations, the properties that hold for every text: parsing and writing
/// leaves it unchanged, and each operation changes only its own ranges and has its intended effect.
void checkText(const std::string& text);

}  // namespace zephyrdown
