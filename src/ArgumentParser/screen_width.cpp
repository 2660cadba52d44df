#include "ArgumentParser/screen_width.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace ArgumentParser {

namespace {

std::optional<int> columnsOfEnvironment() {
  const char* variable = std::getenv("COLUMNS");
  if (!variable) return {};
  const std::string_view text = variable;
  int columns = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
  if (error != std::errc{} || end != text.data() + text.size() || columns < 1) return {};
  return columns;
}

std::optional<int> columnsOfTerminal() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return {};
  return size.ws_col;
}

}  // namespace

int screenWidth() {
  if (const auto columns = columnsOfEnvironment()) return *columns;
  return columnsOfTerminal().value_or(80);
}

}  // namespace ArgumentParser
