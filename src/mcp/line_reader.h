#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tavi::mcp {

/// Reads lines of any length from a file descriptor, and returns each as soon as it is complete.
/// The caller owns the descriptor.
class LineReader {
 public:
  /// `whileIdle`, if not empty, is called repeatedly while no input arrives, until it returns
  /// false.
  explicit LineReader(int descriptor, std::function<bool()> whileIdle = {})
      : descriptor_(descriptor), whileIdle_(std::move(whileIdle)) {}

  /// The next line without its line break ("\n" or "\r\n", optional on the last line), valid until
  /// the next call. Ill-formed UTF-8 is replaced with U+FFFD. Absent at the end of input or if a
  /// read fails. Throws std::bad_alloc if the line does not fit into memory; the next call then
  /// returns the line after it.
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
  std::size_t begin_ = 0;    ///< start of the bytes that no line has returned yet
  std::size_t scanned_ = 0;  ///< there is no line break between begin_ and here
  std::size_t end_ = 0;      ///< end of the bytes read
  std::string repaired_;
};

}  // namespace tavi::mcp
