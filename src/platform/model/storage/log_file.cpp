#include "platform/model/storage/log_file.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tavimodel::sqlite {
namespace {

using Methods = sqlite3_io_methods;

constexpr int frameHeaderSize = 24;
constexpr int capacity = 128 * 1024;
/// Most commands write fewer frames, for which the memory would cost more than the calls.
constexpr int framesBefore = 64;

LogFile& logOf(sqlite3_file* file) {
  return *static_cast<LogFile*>(file);
}

/// Calls the method of the system's file after what is held back was written.
template <auto method, typename... Arguments>
int flushAndForward(sqlite3_file* file, Arguments... arguments) {
  const int code = logOf(file).interrupt();
  return code == SQLITE_OK ? forward<method>(file, arguments...) : code;
}

int close(sqlite3_file* file) {
  const int code = forward<&Methods::xClose>(file);
  logOf(file).leave();
  logOf(file).~LogFile();
  return code;
}

/// Whether this header ends a transaction: it then has the size of the database.
bool isOfCommit(const void* header) {
  constexpr char none[4] = {};
  return std::memcmp(static_cast<const char*>(header) + 4, none, sizeof none) != 0;
}

}  // namespace

const sqlite3_io_methods LogFile::methods{
    .iVersion = 1,
    .xClose = close,
    .xRead = flushAndForward<&Methods::xRead, void*, int, sqlite3_int64>,
    .xWrite = [](sqlite3_file* file, const void* bytes, int amount,
                 sqlite3_int64 offset) { return logOf(file).write(bytes, amount, offset); },
    .xTruncate = flushAndForward<&Methods::xTruncate, sqlite3_int64>,
    .xSync =
        [](sqlite3_file* file, int flags) {
          const int code = logOf(file).flush();
          return code == SQLITE_OK ? forward<&Methods::xSync>(file, flags) : code;
        },
    .xFileSize = flushAndForward<&Methods::xFileSize, sqlite3_int64*>,
    .xLock = forward<&Methods::xLock, int>,
    .xUnlock = forward<&Methods::xUnlock, int>,
    .xCheckReservedLock = forward<&Methods::xCheckReservedLock, int*>,
    .xFileControl = forward<&Methods::xFileControl, int, void*>,
    .xSectorSize = forward<&Methods::xSectorSize>,
    .xDeviceCharacteristics = forward<&Methods::xDeviceCharacteristics>,
    .xShmMap = nullptr,
    .xShmLock = nullptr,
    .xShmBarrier = nullptr,
    .xShmUnmap = nullptr,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

/// Begins only with a header that follows the write before it. Others are changes of frames that
/// are in the file already.
bool LogFile::holdsBack(int amount, sqlite3_int64 offset) {
  if (size_ > 0) return true;
  if (amount != frameHeaderSize || offset != next_ || framesSeen_ < framesBefore) return false;
  if (!held_) held_.reset(static_cast<char*>(sqlite3_malloc(capacity)));
  return held_ != nullptr;
}

int LogFile::write(const void* bytes, int amount, sqlite3_int64 offset) {
  const bool isHeader = amount == frameHeaderSize;
  const bool endsCommit = !isHeader && commits_ && offset == next_;
  if (offset != next_ || amount > capacity - size_) {
    const int code = flush();
    if (code != SQLITE_OK) return code;
  }
  const bool holds = holdsBack(amount, offset);
  if (isHeader) commits_ = isOfCommit(bytes);
  next_ = offset + amount;
  if (!holds) {
    if (isHeader) framesSeen_ = std::min(framesSeen_ + 1, framesBefore);
    return forward<&Methods::xWrite>(this, bytes, amount, offset);
  }
  std::memcpy(held_.get() + size_, bytes, static_cast<std::size_t>(amount));
  size_ += amount;
  return endsCommit ? flush() : SQLITE_OK;
}

int LogFile::flush() {
  if (size_ == 0) return SQLITE_OK;
  const int size = std::exchange(size_, 0);
  const void* bytes = held_.get();
  const int code = forward<&Methods::xWrite>(this, bytes, size, next_ - size);
  if (code != SQLITE_OK) next_ = -1;
  return code;
}

void LogFile::enterIn(LogFile** place) {
  place_ = place;
  *place = this;
}

void LogFile::leave() const {
  if (place_ != nullptr) *place_ = nullptr;
}

int LogFile::interrupt() {
  const int code = flush();
  next_ = -1;
  return code;
}

}  // namespace tavimodel::sqlite
