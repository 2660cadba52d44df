#pragma once

#include <cstddef>
#include <utility>

namespace platform::system {

/// Owns an open file descriptor and closes it, or owns none. Closing leaves `errno` as it was, so a
/// caller may report the failure that made it give up.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  /// Takes what open(2) and its kin return; a negative value is no descriptor.
  explicit FileDescriptor(int descriptor) noexcept : value_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : value_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  ~FileDescriptor() { reset(); }

  explicit operator bool() const { return value_ >= 0; }
  int get() const { return value_; }  ///< negative when there is none
  int release() { return std::exchange(value_, -1); }
  void reset();

  /// Closes the file and answers whether that succeeded: some file systems report a failed write
  /// only now. `errno` says why.
  bool close();

 private:
  int value_ = -1;
};

/// read(2) that survives a signal and waits where the descriptor was made non-blocking.
/// The number of bytes read, 0 at the end of input, negative with `errno` set on failure.
std::ptrdiff_t readSome(int descriptor, char* into, std::size_t room);

}  // namespace platform::system
