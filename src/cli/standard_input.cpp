#include "cli/standard_input.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <system_error>

#include "cli/output/output_formatter.h"
#include "cli/session.h"
#include "platform/system/file_descriptor.h"
#include "platform/text/utf8.h"

namespace tavi {

namespace {

/// The size of standard input in bytes if it is a regular file, else 0.
std::size_t fileSize() {
  struct stat status {};
  const bool regular = ::fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode);
  return regular ? static_cast<std::size_t>(status.st_size) : 0;
}

/// The number of bytes read; 0 at the end of input, and if the descriptor is not open for reading.
std::size_t readSome(char* bytes, std::size_t size) {
  const auto count = platform::system::readSome(STDIN_FILENO, bytes, size);
  if (count >= 0) return static_cast<std::size_t>(count);
  if (errno == EBADF) return 0;
  throw std::system_error(errno, std::generic_category(), "Could not read the standard input");
}

/// Reserves memory for a large file in huge pages, if the system has them: the page faults of
/// thousands of small pages take longer than reading the file.
void reserveFor(std::size_t size, std::string& data) {
  data.reserve(size);
  const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  const auto begin = (reinterpret_cast<std::uintptr_t>(data.data()) + page - 1) / page * page;
  const auto end = reinterpret_cast<std::uintptr_t>(data.data()) + data.capacity();
  if (end > begin) ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

}  // namespace

std::optional<std::string> readStdinData() {
  if (::isatty(STDIN_FILENO)) return std::nullopt;
  std::string data;
  constexpr std::size_t large = std::size_t{8} << 20;
  if (const std::size_t size = fileSize(); size >= large) reserveFor(size, data);
  // Reads into a buffer that stays in the cache. Reading into the string directly would first clear
  // its memory.
  constexpr std::size_t chunk = 256 * 1024;
  const auto buffer = std::make_unique_for_overwrite<char[]>(chunk);
  while (const std::size_t size = readSome(buffer.get(), chunk)) data.append(buffer.get(), size);
  return data;
}

std::optional<std::string> textOrStdin(const std::optional<std::string>& option) {
  if (option) return OutputFormatter::unescape(*option);
  auto data = Session::current().readStdinData();
  if (data && !platform::text::isValidUTF8(*data)) data.reset();
  return data;
}

}  // namespace tavi
