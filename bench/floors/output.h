#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace floors {

/// Buffers bytes for standard output.
class Output {
 public:
  ~Output() { flush(); }

  Output& operator<<(std::string_view text) {
    bytes_ += text;
    if (bytes_.size() >= 65'536) flush();
    return *this;
  }
  Output& operator<<(std::int64_t number) { return *this << std::to_string(number); }

  void flush() {
    for (std::size_t at = 0; at < bytes_.size();) {
      const ssize_t written = write(STDOUT_FILENO, bytes_.data() + at, bytes_.size() - at);
      if (written < 0) std::exit(1);
      at += static_cast<std::size_t>(written);
    }
    bytes_.clear();
  }

 private:
  std::string bytes_;
};

}  // namespace floors
