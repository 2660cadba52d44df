#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavi::mcp {

/// Lines from a file descriptor, of any length, each given out as soon as it is there.
class LineReader {
 public:
  explicit LineReader(int descriptor) : descriptor_(descriptor) {}

  /// The next line without its ending, which is "\n" or "\r\n"; the last one needs none. Ill-formed
  /// UTF-8 in it is replaced by U+FFFD. Good until the next call. Nothing at the end of input, for
  /// which a failing read counts too. Throws std::bad_alloc for a line that memory cannot hold; the
  /// call after that gives the line that follows.
  std::optional<std::string_view> next();

 private:
  bool fill();
  void makeRoom();
  void skipLine();
  std::string_view repaired(std::string_view line);

  int descriptor_;
  std::unique_ptr<char[]> buffer_;
  std::size_t capacity_ = 0;
  std::size_t begin_ = 0;    ///< of what has not been given out
  std::size_t scanned_ = 0;  ///< no line break between begin_ and here
  std::size_t end_ = 0;      ///< of what has been read
  std::string repaired_;
};

}  // namespace tavi::mcp
