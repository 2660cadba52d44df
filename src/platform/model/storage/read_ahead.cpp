#include "platform/model/storage/read_ahead.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "platform/model/storage/log_file.h"

namespace tavimodel::sqlite {
namespace {

constexpr char name[] = "read-ahead";
constexpr int firstWindow = 16 * 1024;
constexpr int largestWindow = 64 * 1024;
/// Some processors copy a file's pages far slower to memory that begins a few bytes into a page.
constexpr std::size_t alignment = 4096;
constexpr int readsOfScan = 8;  // after so many, each near the last, pages are read ahead
constexpr int mostNearReads = 2 * readsOfScan;

sqlite3_vfs* systemVFS = nullptr;

struct Release {
  void operator()(void* memory) const { std::free(memory); }
};

/// The database file.
class File : public WrappedFile {
 public:
  LogFile* log = nullptr;  ///< while it is open

  int read(void* to, int amount, sqlite3_int64 offset) {
    if (serves(to, amount, offset)) return SQLITE_OK;
    if (isInScan(offset) && offset >= end_ && readAhead(offset) && serves(to, amount, offset)) {
      return SQLITE_OK;
    }
    return system()->pMethods->xRead(system(), to, amount, offset);
  }

  void forget() {
    begin_ = end_ = 0;
    last_ = 0;
    nearReads_ = 0;
    window_ = firstWindow;
  }

 private:
  bool serves(void* to, int amount, sqlite3_int64 offset) {
    if (offset < begin_ || offset + amount > end_) return false;
    std::memcpy(to, &pages_[static_cast<std::size_t>(offset - begin_)],
                static_cast<std::size_t>(amount));
    last_ = offset;
    return true;
  }

  /// Whether a scan is read, and this page of it. A scan also reads a few pages elsewhere, of the
  /// upper levels of its tree.
  bool isInScan(sqlite3_int64 offset) {
    const bool isNear = std::abs(offset - last_) <= largestWindow;
    nearReads_ = isNear ? std::min(nearReads_ + 1, mostNearReads)
                        : std::max(nearReads_ - readsOfScan / 2, 0);
    if (isNear || nearReads_ == 0) last_ = offset;
    return isNear && nearReads_ >= readsOfScan;
  }

  bool readAhead(sqlite3_int64 offset) {
    begin_ = end_ = 0;
    if (window_ == 0) return false;
    if (!pages_) pages_.reset(static_cast<char*>(std::aligned_alloc(alignment, largestWindow)));
    if (!pages_) return false;
    if (system()->pMethods->xRead(system(), pages_.get(), window_, offset) != SQLITE_OK) {
      window_ = 0;  // near the file's end, or a failure that is the page's own read to report
      return false;
    }
    begin_ = offset;
    end_ = offset + window_;
    window_ = std::min(2 * window_, largestWindow);
    return true;
  }

  std::unique_ptr<char[], Release> pages_;  ///< the file's bytes from `begin_` to `end_`
  sqlite3_int64 begin_ = 0;
  sqlite3_int64 end_ = 0;
  sqlite3_int64 last_ = 0;  ///< offset of the last read near others
  int nearReads_ = 0;       ///< how many reads began near the last; fewer after others
  int window_ = firstWindow;
};
static_assert(sizeof(File) <= WrappedFile::wrapperSize);

File& fileOf(sqlite3_file* file) {
  return *static_cast<File*>(file);
}

/// Calls the method of the system's file, after which the file may have other contents.
template <auto method, typename... Arguments>
int forgetAndForward(sqlite3_file* file, Arguments... arguments) {
  fileOf(file).forget();
  return forward<method>(file, arguments...);
}

/// The same for a method that may give up the write lock: what the log holds back then belongs to a
/// transaction that was rolled back, and must not be written later.
template <auto method, typename... Arguments>
int unlock(sqlite3_file* file, Arguments... arguments) {
  if (LogFile* log = fileOf(file).log) static_cast<void>(log->flush());
  return forgetAndForward<method>(file, arguments...);
}

int close(sqlite3_file* file) {
  const int code = forward<&sqlite3_io_methods::xClose>(file);
  fileOf(file).~File();
  return code;
}

using Methods = sqlite3_io_methods;

constexpr Methods methods{
    .iVersion = 2,  // no memory mapping
    .xClose = close,
    .xRead = [](sqlite3_file* file, void* to, int amount,
                sqlite3_int64 offset) { return fileOf(file).read(to, amount, offset); },
    .xWrite = forgetAndForward<&Methods::xWrite, const void*, int, sqlite3_int64>,
    .xTruncate = forgetAndForward<&Methods::xTruncate, sqlite3_int64>,
    .xSync = forward<&Methods::xSync, int>,
    .xFileSize = forward<&Methods::xFileSize, sqlite3_int64*>,
    .xLock = forgetAndForward<&Methods::xLock, int>,
    .xUnlock = unlock<&Methods::xUnlock, int>,
    .xCheckReservedLock = forward<&Methods::xCheckReservedLock, int*>,
    .xFileControl = forward<&Methods::xFileControl, int, void*>,
    .xSectorSize = forward<&Methods::xSectorSize>,
    .xDeviceCharacteristics = forward<&Methods::xDeviceCharacteristics>,
    .xShmMap = forward<&Methods::xShmMap, int, int, int, void volatile**>,
    .xShmLock =
        [](sqlite3_file* file, int offset, int count, int flags) {
          constexpr auto lock = &Methods::xShmLock;
          return (flags & SQLITE_SHM_UNLOCK) != 0
                     ? unlock<lock>(file, offset, count, flags)
                     : forgetAndForward<lock>(file, offset, count, flags);
        },
    .xShmBarrier = forward<&Methods::xShmBarrier>,
    .xShmUnmap = unlock<&Methods::xShmUnmap, int>,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

template <typename Wrapped>
int openWrapped(const char* path, sqlite3_file* file, const Methods& calls, int flags,
                int* flagsUsed) {
  Wrapped* opened = new (file) Wrapped;
  sqlite3_file* system = opened->system();
  system->pMethods = nullptr;
  const int code = systemVFS->xOpen(systemVFS, path, system, flags, flagsUsed);
  opened->pMethods = system->pMethods != nullptr ? &calls : nullptr;
  if (opened->pMethods == nullptr) opened->~Wrapped();
  return code;
}

/// Opens the database with read-ahead, its log as a LogFile, and other files as the system does.
int open(sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* flagsUsed) {
  if ((flags & SQLITE_OPEN_MAIN_DB) != 0) {
    return openWrapped<File>(path, file, methods, flags, flagsUsed);
  }
  if ((flags & SQLITE_OPEN_WAL) == 0) {
    return systemVFS->xOpen(systemVFS, path, file, flags, flagsUsed);
  }
  const int code = openWrapped<LogFile>(path, file, LogFile::methods, flags, flagsUsed);
  if (file->pMethods != nullptr) {
    static_cast<LogFile*>(file)->enterIn(&fileOf(sqlite3_database_file_object(path)).log);
  }
  return code;
}

const char* registered() {
  systemVFS = sqlite3_vfs_find(nullptr);
  if (systemVFS == nullptr) return nullptr;
  static sqlite3_vfs vfs = *systemVFS;
  vfs.pNext = nullptr;
  vfs.zName = name;
  vfs.szOsFile += static_cast<int>(WrappedFile::wrapperSize);
  vfs.xOpen = open;
  vfs.xSleep = [](sqlite3_vfs*, int time) { return systemVFS->xSleep(systemVFS, time); };
  return sqlite3_vfs_register(&vfs, 0) == SQLITE_OK ? name : nullptr;
}

}  // namespace

const char* readAheadVFS() {
  static const char* const vfs = registered();
  return vfs;
}

}  // namespace tavimodel::sqlite
