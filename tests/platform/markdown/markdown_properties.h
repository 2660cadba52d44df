#pragma once

#include <string>

namespace zephyrdown::testing {

/// What must hold of every text whatever: it is read and written back, each operation changes its
/// own ranges only and does what it says. A failure is gtest's.
void checkText(const std::string& text);

}  // namespace zephyrdown::testing
