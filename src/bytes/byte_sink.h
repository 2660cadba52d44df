#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace tavi {

/// A buffered output. A write costs a copy into the buffer, and memory use does not grow with the
/// output. The destructor does not flush, since flushing may fail: call `flush`.
class ByteSink {
 public:
  static constexpr std::size_t bufferSize = 64 * 1024;  ///< bytes

  ByteSink(const ByteSink&) = delete;
  ByteSink& operator=(const ByteSink&) = delete;
  virtual ~ByteSink() = default;

  void put(char byte) {
    if (used_ == capacity_) makeRoom();
    buffer_[used_++] = byte;
  }
  void append(std::string_view bytes) {
    if (bytes.size() > capacity_ - used_) return appendPastBuffer(bytes);
    bytes.copy(buffer_.get() + used_, bytes.size());
    used_ += bytes.size();
  }
  /// Passes the buffered bytes to `accept` and empties the buffer, even when `accept` throws.
  void flush();

 protected:
  ByteSink() = default;
  /// Delivers all of `bytes`, the next part of the output, or throws.
  virtual void accept(std::string_view bytes) = 0;

 private:
  void appendPastBuffer(std::string_view bytes);
  void makeRoom();

  std::unique_ptr<char[]> buffer_;  // from the first byte on: few commands write errors
  std::size_t capacity_ = 0;
  std::size_t used_ = 0;
};

/// Collects the output in a string.
class StringSink final : public ByteSink {
 public:
  /// The output so far; the sink is empty afterwards.
  std::string take() {
    flush();
    return std::exchange(text_, {});
  }

 private:
  void accept(std::string_view bytes) override { text_ += bytes; }
  std::string text_;
};

/// The reader has closed the pipe (EPIPE). Callers stop writing and report no error.
class OutputClosed : public std::system_error {
 public:
  OutputClosed() : std::system_error(std::make_error_code(std::errc::broken_pipe)) {}
};

/// Writes to an open file descriptor, which the caller owns. Throws OutputClosed when the reader
/// has gone (SIGPIPE must be ignored), and std::system_error for any other failed write(2).
class DescriptorSink final : public ByteSink {
 public:
  explicit DescriptorSink(int descriptor) : descriptor_(descriptor) {}

 private:
  void accept(std::string_view bytes) override;
  int descriptor_;
};

}  // namespace tavi
