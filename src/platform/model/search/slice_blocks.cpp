#include "platform/model/search/slice_blocks.h"

#include <algorithm>
#include <span>

namespace tavimodel {
namespace {

/// Limit of a block in bytes: with the row's header it fills a database page of 4096 bytes.
constexpr std::size_t blockSize = 4040;
/// The same after changes: a few entries more take another page.
constexpr std::size_t mostOfChangedBlock = 2 * blockSize;
constexpr std::int64_t blocksInSlice = 65536;

/// Removes a length byte and that many bytes from the front of `bytes`, and returns the latter;
/// fewer if `bytes` ends before.
std::string_view taken(std::string_view& bytes) {
  if (bytes.empty()) return {};
  const std::string_view part = bytes.substr(1, static_cast<unsigned char>(bytes.front()));
  bytes.remove_prefix(1 + part.size());
  return part;
}

void append(std::string& bytes, std::string_view part) {
  bytes += static_cast<char>(part.size());
  bytes += part;
}

using Changes = std::span<const EntryChange>;

/// A block's entries with changes made.
std::string changedBlock(std::string_view entries, Changes changes) {
  std::string result;
  const auto write = [&](std::string_view key, PositionSet positions, const EntryChange& change) {
    positions |= change.added;
    positions -= change.removed;
    if (positions.isEmpty()) return;
    append(result, key);
    append(result, PositionSet::Encoding(positions).bytes());
  };
  while (!entries.empty()) {
    const std::string_view key = taken(entries);
    const std::string_view positions = taken(entries);
    for (; !changes.empty() && changes.front().key < key; changes = changes.subspan(1)) {
      write(changes.front().key, {}, changes.front());
    }
    if (!changes.empty() && changes.front().key == key) {
      write(key, PositionSet::decoded(positions), changes.front());
      changes = changes.subspan(1);
    } else {
      append(result, key);
      append(result, positions);
    }
  }
  for (const EntryChange& change : changes) write(change.key, {}, change);
  return result;
}

}  // namespace

bool changeEntries(sqlite::Connection& connection, std::int64_t slice,
                   const std::vector<EntryChange>& changes) {
  sqlite::Query row = connection.query("SELECT firsts FROM searchSlice WHERE slice = ?1");
  if (!row.bind(1, slice).step() || row.text(0).empty()) return false;
  sqlite::Query read = connection.query("SELECT entries FROM searchBlock WHERE id = ?1");
  sqlite::Query write = connection.query("UPDATE searchBlock SET entries = ?2 WHERE id = ?1");
  std::string firsts;
  auto next = changes.begin();
  std::int64_t block = slice * blocksInSlice;
  for (std::string_view rest = row.text(0); !rest.empty(); ++block) {
    std::string_view first = taken(rest);
    std::string_view following = rest;
    const auto end = rest.empty()
                         ? changes.end()
                         : std::find_if(next, changes.end(),
                                        [key = taken(following)](const EntryChange& change) {
                                          return change.key >= key;
                                        });
    std::string changed;
    if (next != end) {
      if (!read.reset().bind(1, block).step()) return false;
      changed = changedBlock(read.text(0), {next, end});
      if (changed.empty() || changed.size() > mostOfChangedBlock) return false;
      write.reset().bind(1, block).bind(2, changed).run();
      std::string_view entries = changed;
      first = taken(entries);
      next = end;
    }
    append(firsts, first);
  }
  if (firsts == row.text(0)) return true;
  connection.query("UPDATE searchSlice SET firsts = ?2 WHERE slice = ?1")
      .bind(1, slice)
      .bind(2, firsts)
      .run();
  return true;
}

void SliceWriter::add(std::string_view key, std::string_view positions) {
  if (block_.size() + key.size() + positions.size() + 2 > blockSize) writeBlock();
  if (block_.empty()) append(firsts_, key);
  append(block_, key);
  append(block_, positions);
}

void SliceWriter::writeBlock() {
  connection_.query("INSERT INTO searchBlock VALUES (?1, ?2)")
      .bind(1, slice_ * blocksInSlice + blocks_)
      .bind(2, block_)
      .run();
  ++blocks_;
  block_.clear();
}

void SliceWriter::finish(int notes) {
  if (!block_.empty()) writeBlock();
  connection_.query("INSERT INTO searchSlice (slice, notes, firsts) VALUES (?1, ?2, ?3)")
      .bind(1, slice_)
      .bind(2, std::int64_t{notes})
      .bind(3, firsts_)
      .run();
}

PositionSet SliceReader::notesWith(const std::vector<Trigram>& trigrams) {
  PositionSet notes = PositionSet::all();
  for (const Trigram trigram : trigrams) {
    notes &= positionsOf(utf8Of(trigram));
    if (notes.isEmpty()) break;
  }
  if (!firsts_.empty() && firsts_.front() == '\0') notes |= positionsOf({});
  return notes;
}

PositionSet SliceReader::positionsOf(std::string_view key) {
  std::int64_t block = -1;
  for (std::string_view rest = firsts_; !rest.empty() && taken(rest) <= key;) ++block;
  if (block < 0) return {};
  sqlite::Query query = connection_.query("SELECT entries FROM searchBlock WHERE id = ?1");
  query.bind(1, slice_ * blocksInSlice + block);
  if (!query.step()) return {};
  for (std::string_view entries = query.text(0); !entries.empty();) {
    const std::string_view found = taken(entries);
    const std::string_view positions = taken(entries);
    if (found == key) return PositionSet::decoded(positions);
    if (found > key) break;
  }
  return {};
}

void forEachEntry(sqlite::Connection& connection, std::int64_t slice,
                  const std::function<void(std::string_view, std::string_view)>& visit) {
  sqlite::Query query =
      connection.query("SELECT entries FROM searchBlock WHERE id BETWEEN ?1 AND ?2 ORDER BY id");
  query.bind(1, slice * blocksInSlice).bind(2, (slice + 1) * blocksInSlice - 1);
  while (query.step()) {
    for (std::string_view entries = query.text(0); !entries.empty();) {
      const std::string_view key = taken(entries);
      visit(key, taken(entries));
    }
  }
}

void removeSlice(sqlite::Connection& connection, std::int64_t slice) {
  connection.query("DELETE FROM searchBlock WHERE id BETWEEN ?1 AND ?2")
      .bind(1, slice * blocksInSlice)
      .bind(2, (slice + 1) * blocksInSlice - 1)
      .run();
  connection.query("DELETE FROM searchSlice WHERE slice = ?1").bind(1, slice).run();
}

}  // namespace tavimodel
