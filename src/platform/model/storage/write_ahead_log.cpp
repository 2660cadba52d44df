#include "platform/model/storage/write_ahead_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "platform/system/file_descriptor.h"

namespace tavimodel {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t logHeaderSize = 32;
constexpr std::size_t frameHeaderSize = 24;
constexpr std::uint32_t magic = 0x377f0682;  // the last bit: checksums of big-endian words

std::uint32_t word(std::string_view bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i)
    value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

/// The cumulative checksum of a log, over pairs of 32-bit words in the byte order given by its
/// header.
class Checksum {
 public:
  explicit Checksum(bool bigEndian) : bigEndian_(bigEndian) {}

  void add(std::string_view bytes) {
    for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
      first_ += ordered(bytes, at) + second_;
      second_ += ordered(bytes, at + 4) + first_;
    }
  }
  bool is(std::uint32_t first, std::uint32_t second) const {
    return first == first_ && second == second_;
  }

 private:
  std::uint32_t ordered(std::string_view bytes, std::size_t at) const {
    const std::uint32_t value = word(bytes, at);
    return bigEndian_ ? value : __builtin_bswap32(value);
  }

  bool bigEndian_;
  std::uint32_t first_ = 0;
  std::uint32_t second_ = 0;
};

// A log file, open for reading, or missing.
class LogFile {
 public:
  explicit LogFile(const fs::path& path)
      : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (!descriptor_ && errno != ENOENT) fail();
  }

  /// Fills `bytes` from offset `at`; false if the file ends before. Throws std::system_error.
  bool read(std::string& bytes, std::size_t at) const {
    if (!descriptor_) return false;
    const ssize_t count =
        pread(descriptor_.get(), bytes.data(), bytes.size(), static_cast<off_t>(at));
    if (count < 0) fail();
    return static_cast<std::size_t>(count) == bytes.size();
  }

 private:
  [[noreturn]] void fail() const {
    throw std::system_error(errno, std::generic_category(), "Could not read " + path_.string());
  }

  fs::path path_;
  platform::system::FileDescriptor descriptor_;
};

}  // namespace

fs::path logOf(const fs::path& database) {
  return database.string() + "-wal";
}

std::uintmax_t logSize(const fs::path& database) {
  struct stat status {};
  const bool there = stat(logOf(database).c_str(), &status) == 0;
  return there ? static_cast<std::uintmax_t>(status.st_size) : 0;
}

LogOrigin originOf(const fs::path& log) {
  const LogFile file(log);
  LogOrigin origin;
  std::string header(logHeaderSize, '\0');
  if (!file.read(header, 0) || (word(header, 0) & ~1U) != magic) return origin;
  Checksum checksum((word(header, 0) & 1U) != 0);
  checksum.add(std::string_view(header).substr(0, logHeaderSize - 8));
  if (!checksum.is(word(header, 24), word(header, 28))) return origin;
  origin.pageSize = word(header, 8);

  const std::string_view salts = std::string_view(header).substr(16, 8);
  constexpr std::uint32_t largestPage = 65536;
  if (origin.pageSize < 512 || origin.pageSize > largestPage) return origin;
  std::string frame(frameHeaderSize + origin.pageSize, '\0');
  std::vector<std::uint32_t> uncommitted;
  for (std::size_t at = logHeaderSize; file.read(frame, at); at += frame.size()) {
    const std::string_view bytes = frame;
    checksum.add(bytes.substr(0, 8));
    checksum.add(bytes.substr(frameHeaderSize));
    if (bytes.substr(8, 8) != salts || !checksum.is(word(bytes, 16), word(bytes, 20))) break;
    if (word(bytes, 0) == 1) uncommitted.push_back(word(bytes, frameHeaderSize + 24));
    if (word(bytes, 4) == 0) continue;  // not the last frame of a commit
    origin.databasePages = word(bytes, 4);
    origin.changeCounters.insert(origin.changeCounters.end(), uncommitted.begin(),
                                 uncommitted.end());
    uncommitted.clear();
  }
  return origin;
}

bool belongTogether(std::string_view header, const LogOrigin& log) {
  if (log.isEmpty()) return true;
  constexpr std::size_t wholeHeader = 100;
  if (header.size() < wholeHeader) return false;
  const bool inLogMode = header[18] == 2 && header[19] == 2;
  const std::uint32_t pageSize = word(header, 16) >> 16;  // 16 bits, in which 1 stands for 65536
  if (!inLogMode || (pageSize == 1 ? 65536 : pageSize) != log.pageSize) return false;
  const std::uint32_t counter = word(header, 24);
  // A log without page 1 has not changed the page count.
  if (log.changeCounters.empty()) {
    return word(header, 92) != counter || word(header, 28) == log.databasePages;
  }
  return counter == log.changeCounters.front() - 1 ||
         std::find(log.changeCounters.begin(), log.changeCounters.end(), counter) !=
             log.changeCounters.end();
}

}  // namespace tavimodel
