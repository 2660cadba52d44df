#include "mcp/binary_fingerprint.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "platform/system/file_descriptor.h"

namespace tavi::mcp {
namespace {

namespace fs = std::filesystem;

/// An open file. Reads are buffered, since parsers of headers read a few bytes at a time.
class FileImage final : public ImageBytes {
 public:
  /// O_NONBLOCK: the open does not hang if the path is a FIFO.
  explicit FileImage(const std::string& path)
      : path_(path), file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (!file_) throw BinaryFingerprintError::readFailed(path_, std::strerror(errno));
    if (::fstat(file_.get(), &attributes_) != 0)
      throw BinaryFingerprintError::statFailed(path_, std::strerror(errno));
  }

  const struct stat& attributes() const { return attributes_; }
  std::uint64_t size() const override { return static_cast<std::uint64_t>(attributes_.st_size); }

  bool read(std::uint64_t offset, std::span<std::uint8_t> into) override {
    if (offset > size() || into.size() > size() - offset) return false;
    if (offset < begin_ || offset + into.size() > begin_ + filled_) fillFrom(offset);
    if (offset + into.size() > begin_ + filled_) return false;  // truncated after fstat
    std::copy_n(window_.begin() + static_cast<std::ptrdiff_t>(offset - begin_), into.size(),
                into.begin());
    return true;
  }

 private:
  void fillFrom(std::uint64_t offset) {
    ssize_t count = 0;
    do {
      count = ::pread(file_.get(), window_.data(), window_.size(), static_cast<off_t>(offset));
    } while (count < 0 && errno == EINTR);
    if (count < 0) throw BinaryFingerprintError::readFailed(path_, std::strerror(errno));
    begin_ = offset;
    filled_ = static_cast<std::size_t>(count);
  }

  std::string path_;
  platform::system::FileDescriptor file_;
  struct stat attributes_ {};
  std::uint64_t begin_ = 0;
  std::size_t filled_ = 0;
  std::array<std::uint8_t, 4096> window_;
};

constexpr const char* kRunningImage = "/proc/self/exe";

/// The path passed to execve(2), absolute, with symbolic links kept. Absent if it no longer leads
/// to the running image, or if the dynamic loader was started with the program as its argument.
std::optional<fs::path> pathAsStarted() {
  const auto* given = reinterpret_cast<const char*>(::getauxval(AT_EXECFN));
  if (given == nullptr) return {};
  std::error_code error;
  const fs::path path = fs::absolute(given, error);
  if (error || !fs::equivalent(path, kRunningImage, error) || error) return {};
  return path;
}

std::optional<fs::path> ownExecutablePath() {
  if (auto path = pathAsStarted()) return path;
  std::error_code error;
  const fs::path path = fs::read_symlink(kRunningImage, error);
  if (error) return {};
  return path;
}

}  // namespace

BinaryFingerprintError BinaryFingerprintError::statFailed(std::string_view path,
                                                          std::string_view underlying) {
  return {Case::statFailed, underlying.empty()
                                ? fmt::format("Could not stat {}", path)
                                : fmt::format("Could not stat {}: {}", path, underlying)};
}

BinaryFingerprintError BinaryFingerprintError::readFailed(std::string_view path,
                                                          std::string_view underlying) {
  return {Case::readFailed, fmt::format("Could not read {}: {}", path, underlying)};
}

BinaryFingerprintError BinaryFingerprintError::malformedMachO(std::string_view path) {
  return {
      Case::malformedMachO,
      fmt::format("Could not find LC_UUID in {} (not a Mach-O, or no UUID load command)", path)};
}

BinaryFingerprintError BinaryFingerprintError::executablePathUnavailable() {
  return {Case::executablePathUnavailable, "Could not resolve own executable path"};
}

BinaryFingerprint BinaryFingerprint::ofFile(const std::string& path) {
  if (::access(path.c_str(), F_OK) != 0)
    throw BinaryFingerprintError::statFailed(path, std::strerror(errno));
  FileImage image(path);
  const auto uuid = buildIdentity(image);
  if (!uuid) throw BinaryFingerprintError::malformedMachO(path);
  const struct stat& attributes = image.attributes();
  const auto mtime = std::chrono::seconds(attributes.st_mtim.tv_sec) +
                     std::chrono::nanoseconds(attributes.st_mtim.tv_nsec);
  return {path, std::chrono::sys_time<std::chrono::nanoseconds>(mtime), attributes.st_size, *uuid};
}

BinaryFingerprint BinaryFingerprint::current() {
  static const std::optional<fs::path> path = ownExecutablePath();
  if (!path) throw BinaryFingerprintError::executablePathUnavailable();
  std::error_code error;
  const fs::path resolved = fs::canonical(*path, error);
  if (error) throw BinaryFingerprintError::statFailed(path->string(), error.message());
  return ofFile(resolved);
}

}  // namespace tavi::mcp
