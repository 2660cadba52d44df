#include "mcp/line_reader.h"

#include <poll.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "platform/system/file_descriptor.h"
#include "platform/text/utf8.h"

namespace tavi::mcp {
namespace {

constexpr std::size_t kUsualCapacity = 64 * 1024;

}  // namespace

std::optional<std::string_view> LineReader::next() {
  while (true) {
    const char* from = buffer_.get() + scanned_;
    if (const void* found = scanned_ < end_ ? std::memchr(from, '\n', end_ - scanned_) : nullptr) {
      const auto length = static_cast<const char*>(found) - (buffer_.get() + begin_);
      const std::string_view line(buffer_.get() + begin_, static_cast<std::size_t>(length));
      begin_ = scanned_ = begin_ + line.size() + 1;
      return repaired(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
    }
    scanned_ = end_;
    if (!fill()) break;
  }
  if (begin_ == end_) return {};
  const std::string_view rest(buffer_.get() + begin_, end_ - begin_);
  begin_ = end_;
  return repaired(rest);
}

void LineReader::useIdleTime() const {
  if (!whileIdle_) return;
  constexpr int pause = 20;  // milliseconds; a busy client sends its next line sooner
  pollfd input{.fd = descriptor_, .events = POLLIN, .revents = 0};
  for (int patience = pause; poll(&input, 1, patience) == 0; patience = 0) {
    if (!whileIdle_()) return;
  }
}

bool LineReader::fill() {
  try {
    makeRoom();
  } catch (const std::bad_alloc&) {
    skipLine();
    throw;
  }
  useIdleTime();
  const auto count =
      platform::system::readSome(descriptor_, buffer_.get() + end_, capacity_ - end_);
  if (count <= 0) return false;
  end_ += static_cast<std::size_t>(count);
  return true;
}

/// Makes room after the bytes read. The buffer doubles when it is full, so that the bytes of a long
/// line are copied a constant number of times on average, and shrinks after that line.
void LineReader::makeRoom() {
  const std::size_t begun = end_ - begin_;
  if (end_ < capacity_ && begun > 0) return;
  const std::size_t wanted = std::max(kUsualCapacity, begun * 2);
  if (capacity_ < wanted || capacity_ > 4 * wanted) {
    auto roomier = std::make_unique_for_overwrite<char[]>(wanted);
    if (begun > 0) std::memcpy(roomier.get(), buffer_.get() + begin_, begun);
    buffer_ = std::move(roomier);
    capacity_ = wanted;
  } else if (begin_ > 0) {
    std::memmove(buffer_.get(), buffer_.get() + begin_, begun);
  }
  begin_ = 0;
  scanned_ = end_ = begun;
}

/// Drops the bytes read and the rest of their line.
void LineReader::skipLine() {
  begin_ = scanned_ = end_ = 0;
  while (capacity_ > 0) {
    const auto count = platform::system::readSome(descriptor_, buffer_.get(), capacity_);
    if (count <= 0) return;
    const auto size = static_cast<std::size_t>(count);
    const std::size_t lineEnd = std::string_view(buffer_.get(), size).find('\n');
    if (lineEnd == std::string_view::npos) continue;
    begin_ = scanned_ = lineEnd + 1;
    end_ = size;
    return;
  }
}

std::string_view LineReader::repaired(std::string_view line) {
  if (platform::text::isValidUTF8(line)) return line;
  return repaired_ = platform::text::replacingInvalidUTF8(line);
}

}  // namespace tavi::mcp
