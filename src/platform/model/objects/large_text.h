#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/system/hashing.h"

struct sqlite3_blob;

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// Texts of at least this many bytes are read directly into their string. For shorter ones a query
/// is faster, although SQLite makes a copy of its own.
constexpr std::int64_t largeText = 256 * 1024;

/// The text of a note in the database, which is read in parts. The connection must outlive it.
class LargeText {
 public:
  /// Absent if there is no such note or it has no text. Throws sqlite::Error.
  static std::optional<LargeText> open(sqlite::Connection& connection, std::int64_t note);

  std::size_t size() const { return size_; }
  /// Reads `size` bytes from the offset `at` on. Throws sqlite::Error.
  void read(char* target, std::size_t size, std::size_t at);
  /// The bytes from `begin` to `end`, valid until the next call. Throws sqlite::Error.
  std::string_view part(std::size_t begin, std::size_t end);

 private:
  struct CloseBlob {
    void operator()(sqlite3_blob* blob) const;
  };
  using Blob = std::unique_ptr<sqlite3_blob, CloseBlob>;

  LargeText(sqlite::Connection& connection, Blob blob);

  sqlite::Connection* connection_;
  Blob blob_;
  std::size_t size_;
  std::string part_;
};

/// Reads the text of the note with this row id; absent if there is no such note or it has no text.
/// Throws sqlite::Error.
std::optional<std::string> readLargeText(sqlite::Connection& connection, std::int64_t note);

/// The SHA-256 of the note's text, computed in pieces to save memory; absent if there is no such
/// note or it has no text. Throws sqlite::Error.
std::optional<platform::system::SHA256Digest> digestOfLargeText(sqlite::Connection& connection,
                                                                std::int64_t note);

}  // namespace tavimodel
