#include "platform/model/storage/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <thread>

namespace tavimodel {

FolderLock::FolderLock(const std::filesystem::path& folder, std::chrono::milliseconds patience)
    : descriptor_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (!descriptor_) return;
  if (patience == std::chrono::milliseconds::max()) {
    flock(descriptor_.get(), LOCK_EX);
    return;
  }
  constexpr std::chrono::milliseconds pause{1};
  for (auto waited = pause; flock(descriptor_.get(), LOCK_EX | LOCK_NB) != 0; waited += pause) {
    if (waited > patience) return;
    std::this_thread::sleep_for(pause);
  }
}

}  // namespace tavimodel
