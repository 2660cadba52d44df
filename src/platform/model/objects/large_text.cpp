#include "platform/model/objects/large_text.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {
namespace {

struct CloseBlob {
  void operator()(sqlite3_blob* blob) const { sqlite3_blob_close(blob); }
};
using Blob = std::unique_ptr<sqlite3_blob, CloseBlob>;

[[noreturn]] void fail(sqlite3* database, int code) {
  throw sqlite::Error(code, sqlite3_system_errno(database), sqlite3_errmsg(database));
}

/// Null if the row does not exist, or its text is NULL or a number.
Blob openText(sqlite3* database, std::int64_t note) {
  sqlite3_blob* blob = nullptr;
  const int code = sqlite3_blob_open(database, "main", "note", "text", note, 0, &blob);
  Blob owned(blob);
  if (code != SQLITE_OK && code != SQLITE_ERROR) fail(database, code);
  return code == SQLITE_OK ? std::move(owned) : nullptr;
}

void read(sqlite3* database, sqlite3_blob* blob, char* target, std::size_t size, std::size_t at) {
  const int code = sqlite3_blob_read(blob, target, static_cast<int>(size), static_cast<int>(at));
  if (code != SQLITE_OK) fail(database, code);
}

}  // namespace

std::optional<std::string> readLargeText(sqlite::Connection& connection, std::int64_t note) {
  sqlite3* database = connection.handle();
  const Blob blob = openText(database, note);
  if (!blob) return std::nullopt;
  // Its pages are read once and written once: there is no use in keeping more than a few (KiB).
  connection.execute("PRAGMA cache_size = -256");
  std::string text(static_cast<std::size_t>(sqlite3_blob_bytes(blob.get())), '\0');
  read(database, blob.get(), text.data(), text.size(), 0);
  return text;
}

std::optional<platform::system::SHA256Digest> digestOfLargeText(sqlite::Connection& connection,
                                                                std::int64_t note) {
  sqlite3* database = connection.handle();
  const Blob blob = openText(database, note);
  if (!blob) return std::nullopt;
  std::array<char, 64 * 1024> piece{};
  std::size_t left = static_cast<std::size_t>(sqlite3_blob_bytes(blob.get())), at = 0;
  return platform::system::sha256([&] {
    const std::size_t size = std::min(piece.size(), left);
    read(database, blob.get(), piece.data(), size, at);
    at += size;
    left -= size;
    return std::string_view(piece.data(), size);
  });
}

}  // namespace tavimodel
