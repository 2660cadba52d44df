#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tavi::mcp {

/// Lines from a file descriptor, of any length, each given out as soon as it is there.
class LineReader {
 public:
  /// `whileIdle`, if any, is called when nothing has come for a moment, again and again until it
  /// gives false or something has come.
  explicit LineReader(int descriptor, std::function<bool()> whileIdle = {})
      : descriptor_(descriptor), whileIdle_(std::move(whileIdle)) {}

  /// The next line without its ending, which is "\n" or "\r\n"; the last one needs none. Ill-formed
  /// UTF-8 in it is replaced by U+FFFD. Good until the next call. Nothing at the end of input, for
  /// which a failing read counts too. Throws std::bad_alloc for a line that memory cannot hold; the
  /// call after that gives the line that follows.
  std::optional<std::string_view> next();

 private:
  bool fill();
  void useIdleTime() const;
  void makeRoom();
  void skipLine();
  std::string_view repaired(std::string_view line);

  int descriptor_;
  std::function<bool()> whileIdle_;
  std::unique_ptr<char[]> buffer_;
  std::size_t capacity_ = 0;
  std::size_t begin_ = 0;    ///< of what has not been given out
  std::size_t scanned_ = 0;  ///< no line break between begin_ and here
  std::size_t end_ = 0;      ///< of what has been read
  std::string repaired_;
};

}  // namespace tavi::mcp
