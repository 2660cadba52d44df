#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace support {

/// A temporary home folder, removed with the object. HOME points to it, and TMPDIR to a folder in
/// it.
class ThrowawayHome {
 public:
  enum class On { disk, memory };  ///< memory: tmpfs, if there is one, where syncs are free
  explicit ThrowawayHome(On medium = On::disk) {
    const bool memory = medium == On::memory && access("/dev/shm", W_OK) == 0;
    std::string name = memory ? "/dev/shm/tavi-home-XXXXXX" : "/tmp/tavi-home-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
    setenv("HOME", name.c_str(), 1);
    unsetenv("XDG_DATA_HOME");
    std::filesystem::create_directory(path_ / "tmp");
    setenv("TMPDIR", (path_ / "tmp").c_str(), 1);
  }
  ~ThrowawayHome() {
    std::error_code ignored;
    std::filesystem::permissions(data(), std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(path_, ignored);
  }
  ThrowawayHome(const ThrowawayHome&) = delete;
  ThrowawayHome& operator=(const ThrowawayHome&) = delete;

  /// Sets the application's preference that locks other programs out.
  void lockApplication() const {
    std::filesystem::create_directories(path_ / "Library/Preferences");
    std::ofstream(path_ / "Library/Preferences/X7Q2M5R8K1.net.kelvaro.tavi.plist")
        << "<plist><dict><key>applicationLockingEnabled</key><true/></dict></plist>";
  }

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path data() const { return path_ / ".local/share/tavi"; }
  std::filesystem::path temporary() const { return path_ / "tmp"; }
  std::filesystem::path database() const { return data() / "tavi.sqlite"; }

 private:
  std::filesystem::path path_;
};

}  // namespace support
