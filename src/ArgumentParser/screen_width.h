#pragma once

namespace ArgumentParser {

/// The width of help on standard output in columns: the environment variable COLUMNS if it is a
/// number, else the terminal's width, else 80.
int screenWidth();

}  // namespace ArgumentParser
