#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace tavi {

/// Where output goes, a buffer ahead of it: what is written costs a copy, and memory stays small
/// however long the output is. Nothing is flushed on destruction, since flushing may fail.
class ByteSink {
 public:
  static constexpr std::size_t bufferSize = 64 * 1024;

  ByteSink(const ByteSink&) = delete;
  ByteSink& operator=(const ByteSink&) = delete;
  virtual ~ByteSink() = default;

  void put(char byte) {
    if (used_ == bufferSize) flush();
    buffer_[used_++] = byte;
  }
  void append(std::string_view bytes) {
    if (bytes.size() > bufferSize - used_) return appendPastBuffer(bytes);
    bytes.copy(buffer_.get() + used_, bytes.size());
    used_ += bytes.size();
  }
  /// Hands on what the buffer holds. Bytes whose delivery failed are not kept.
  void flush();

 protected:
  ByteSink() : buffer_(std::make_unique_for_overwrite<char[]>(bufferSize)) {}
  virtual void accept(std::string_view bytes) = 0;

 private:
  void appendPastBuffer(std::string_view bytes);

  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
};

/// Collects everything in one text.
class StringSink final : public ByteSink {
 public:
  std::string take() {
    flush();
    return std::exchange(text_, {});
  }

 private:
  void accept(std::string_view bytes) override { text_ += bytes; }
  std::string text_;
};

/// The reader of a pipe has gone away. No fault: nobody wants the rest.
class OutputClosed : public std::system_error {
 public:
  OutputClosed() : std::system_error(std::make_error_code(std::errc::broken_pipe)) {}
};

/// An open file descriptor, which stays its owner's. Throws OutputClosed, where the process
/// ignores SIGPIPE, and std::system_error.
class DescriptorSink final : public ByteSink {
 public:
  explicit DescriptorSink(int descriptor) : descriptor_(descriptor) {}

 private:
  void accept(std::string_view bytes) override;
  int descriptor_;
};

}  // namespace tavi
