#pragma once

#include <cstddef>
#include <utility>

namespace platform::system {

/// Owns an open file descriptor, or none. The destructor and `reset` close it and preserve `errno`,
/// so that a caller can still report an earlier error.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  /// Takes ownership of the result of open(2) and the like; negative means none.
  explicit FileDescriptor(int descriptor) noexcept : value_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : value_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  ~FileDescriptor() { reset(); }

  explicit operator bool() const { return value_ >= 0; }
  int get() const { return value_; }                   ///< negative if there is none
  int release() { return std::exchange(value_, -1); }  ///< gives up ownership
  void reset();

  /// Closes the descriptor. False, with `errno` set, if that fails: some file systems report a
  /// failed write only then.
  bool close();

 private:
  int value_ = -1;
};

/// Like read(2), but retries after a signal (EINTR) and waits if the descriptor is non-blocking.
/// Returns the number of bytes read, 0 at the end of input, or -1 with `errno` set.
std::ptrdiff_t readSome(int descriptor, char* into, std::size_t room);

}  // namespace platform::system
