#pragma once

namespace ArgumentParser {

/// Columns for help on standard output: the environment's COLUMNS if that is a number, else the
/// terminal's width, else 80.
int screenWidth();

}  // namespace ArgumentParser
