#include "platform/model/objects/large_text.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <utility>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {
namespace {

[[noreturn]] void fail(sqlite3* database, int code) {
  throw sqlite::Error(code, sqlite3_system_errno(database), sqlite3_errmsg(database));
}

}  // namespace

void LargeText::CloseBlob::operator()(sqlite3_blob* blob) const {
  sqlite3_blob_close(blob);
}

LargeText::LargeText(sqlite::Connection& connection, Blob blob)
    : connection_(&connection),
      blob_(std::move(blob)),
      size_(static_cast<std::size_t>(sqlite3_blob_bytes(blob_.get()))) {}

std::optional<LargeText> LargeText::open(sqlite::Connection& connection, std::int64_t note) {
  sqlite3* database = connection.handle();
  sqlite3_blob* opened = nullptr;
  const int code = sqlite3_blob_open(database, "main", "note", "text", note, 0, &opened);
  Blob blob(opened);
  // SQLITE_ERROR: the row does not exist, or its text is NULL or a number.
  if (code != SQLITE_OK && code != SQLITE_ERROR) fail(database, code);
  if (code != SQLITE_OK) return std::nullopt;
  return LargeText(connection, std::move(blob));
}

void LargeText::read(char* target, std::size_t size, std::size_t at) {
  const int code =
      sqlite3_blob_read(blob_.get(), target, static_cast<int>(size), static_cast<int>(at));
  if (code != SQLITE_OK) fail(connection_->handle(), code);
}

std::string_view LargeText::part(std::size_t begin, std::size_t end) {
  part_.resize(end - begin);
  read(part_.data(), part_.size(), begin);
  return part_;
}

std::optional<std::string> readLargeText(sqlite::Connection& connection, std::int64_t note) {
  std::optional<LargeText> large = LargeText::open(connection, note);
  if (!large) return std::nullopt;
  // Its pages are read once and written once: there is no use in keeping more than a few (KiB).
  connection.execute("PRAGMA cache_size = -256");
  std::string text(large->size(), '\0');
  large->read(text.data(), text.size(), 0);
  return text;
}

std::optional<platform::system::SHA256Digest> digestOfLargeText(sqlite::Connection& connection,
                                                                std::int64_t note) {
  std::optional<LargeText> large = LargeText::open(connection, note);
  if (!large) return std::nullopt;
  std::array<char, 64 * 1024> piece{};
  std::size_t at = 0;
  return platform::system::sha256([&] {
    const std::size_t size = std::min(piece.size(), large->size() - at);
    large->read(piece.data(), size, at);
    at += size;
    return std::string_view(piece.data(), size);
  });
}

}  // namespace tavimodel
