#include "mcp/line_sink.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/system/directories.h"

namespace tavi::mcp {
namespace {

using platform::system::FileDescriptor;

/// Empty if the file system does not support O_TMPFILE.
FileDescriptor namelessFile() {
  const auto folder = platform::system::temporaryDirectory();
  return FileDescriptor(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
}

[[noreturn]] void lose() {
  throw OutputLost{{errno, std::generic_category()}};
}

}  // namespace

void LineSink::finishLine() {
  put('\n');
  flush();
  writeOut(held_);
  if (spilled_) writeOutSpilled();
  writeOut(rest_);
  forgetLine();
}

void LineSink::abandonLine() {
  flush();
  forgetLine();
}

void LineSink::accept(std::string_view bytes) {
  const bool fits = !spilled_ && held_.size() + bytes.size() <= heldInMemory;
  if (fits && rest_.empty()) {
    held_ += bytes;
  } else if (!rest_.empty() || !spill(bytes)) {
    rest_ += bytes;
  }
}

/// False if the file cannot take all the bytes; a part that was written is ignored.
bool LineSink::spill(std::string_view bytes) {
  if (!spilled_) spilled_ = namelessFile();
  if (!spilled_) return false;
  std::uint64_t end = spilledSize_;
  while (!bytes.empty()) {
    const ssize_t count =
        ::pwrite(spilled_.get(), bytes.data(), bytes.size(), static_cast<off_t>(end));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
    end += static_cast<std::uint64_t>(count);
  }
  spilledSize_ = end;
  return true;
}

void LineSink::writeOutSpilled() {
  std::array<char, bufferSize> piece;
  for (std::uint64_t at = 0; at < spilledSize_;) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), spilledSize_ - at));
    const ssize_t count = ::pread(spilled_.get(), piece.data(), wanted, static_cast<off_t>(at));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) lose();
    writeOut({piece.data(), static_cast<std::size_t>(count)});
    at += static_cast<std::uint64_t>(count);
  }
}

void LineSink::writeOut(std::string_view bytes) try {
  out_.append(bytes);
  out_.flush();
} catch (const std::system_error& failure) {
  throw OutputLost{failure.code()};
}

void LineSink::forgetLine() {
  held_.clear();
  spilled_.reset();
  spilledSize_ = 0;
  std::exchange(rest_, {});
}

}  // namespace tavi::mcp
