// copy FILE FOLDER: copies the file into the folder like `cp`, named after the process id, syncs
// the copy to disk, and prints its size.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "output.h"

namespace {

int checked(int result, const char* what) {
  if (result >= 0) return result;
  std::perror(what);
  std::exit(1);
}

}  // namespace

int main(int, char** argv) {
  const std::string folder = argv[2];
  const std::string target = folder + "/" + std::to_string(getpid());
  const int from = checked(open(argv[1], O_RDONLY), argv[1]);
  const int to = checked(open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600), target.c_str());
  struct stat status {};
  checked(fstat(from, &status), argv[1]);
  for (off_t left = status.st_size; left > 0;) {
    const ssize_t copied =
        copy_file_range(from, nullptr, to, nullptr, static_cast<std::size_t>(left), 0);
    checked(copied > 0 ? 0 : -1, "copy_file_range");
    left -= copied;
  }
  checked(fsync(to), target.c_str());
  checked(fsync(checked(open(folder.c_str(), O_RDONLY), folder.c_str())), folder.c_str());
  floors::Output() << std::int64_t{status.st_size} << "\n";
}
