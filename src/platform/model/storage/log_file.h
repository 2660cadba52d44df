#pragma once

#include <memory>

#include "platform/model/storage/wrapped_file.h"

namespace tavimodel::sqlite {

/// The write-ahead log, of which the pages of a transaction are written with one call, not each
/// with two as SQLite does; that takes a tenth less time per commit of a small note.
///
/// Only frames of an uncommitted transaction are held back, and only while it has the write lock:
/// `write` returns after the last page of a commit when everything is in the file, so what other
/// processes and SQLite's recovery find is the same. Format: https://www.sqlite.org/walformat.html
class LogFile : public WrappedFile {
 public:
  /// The methods for SQLite of a LogFile.
  static const sqlite3_io_methods methods;

  int write(const void* bytes, int amount, sqlite3_int64 offset);
  /// Writes what is held back. Returns a result code.
  int flush();
  /// Flushes before anything else than a write.
  int interrupt();
  /// Enters this file in `place` until it is closed.
  void enterIn(LogFile** place);
  void leave() const;

 private:
  bool holdsBack(int amount, sqlite3_int64 offset);

  struct Release {
    void operator()(char* memory) const { sqlite3_free(memory); }
  };
  std::unique_ptr<char, Release> held_;
  int size_ = 0;             ///< bytes held back
  sqlite3_int64 next_ = -1;  ///< where the last write ended; -1 after another call
  bool commits_ = false;     ///< the last frame's header is that of a commit
  int framesSeen_ = 0;       ///< up to a limit
  LogFile** place_ = nullptr;
};
static_assert(sizeof(LogFile) <= WrappedFile::wrapperSize);

}  // namespace tavimodel::sqlite
