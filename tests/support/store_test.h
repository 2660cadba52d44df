#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "domain/note_store.h"
#include "store/make_store.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavi {

using Texts = std::vector<std::string>;

/// A test of the real store, on a database in a temporary home.
class StoreTest : public ::testing::Test {
 protected:
  /// A new store, as each command opens one.
  std::unique_ptr<NoteStore> fresh(bool preserveModificationDate = false) {
    return makeStore({.preserveModificationDate = preserveModificationDate});
  }
  /// A new store that stays open until the next call, since lists read from it.
  NoteStore& store() { return *(store_ = fresh()); }

  std::string create(const std::string& text) {
    return fresh()->createNoteFromText(text, {}).metadata.id;
  }
  /// Creates a note and returns its id: "ID-1", "ID-2" and so on, each dated a day after the last.
  std::string add(const std::string& text, const Texts& tags = {}) {
    const std::string made = fresh()->createNoteFromText(text, tags).metadata.id;
    const std::string number = value("SELECT count(*) FROM note");
    const std::string date = "1767225600 + 86400 * " + number;
    otherProgram("UPDATE note SET uniqueIdentifier = 'ID-" + number + "', creationDate = " + date +
                 ", modificationDate = " + date + " WHERE uniqueIdentifier = '" + made + "'");
    return "ID-" + number;
  }
  std::string text(const std::string& id) { return fresh()->noteWithID(id).content; }
  NoteMetadata metadata(const std::string& id) { return fresh()->metadataWithID(id); }

  /// Runs SQL as another program.
  void otherProgram(const std::string& sql) { support::ForeignClient(home.database()).run(sql); }
  std::string value(const std::string& sql) {
    return support::ForeignClient(home.database()).value(sql);
  }
  void lock(const std::string& id) {
    otherProgram("UPDATE note SET encrypted = 1 WHERE uniqueIdentifier = '" + id + "'");
  }

  support::ThrowawayHome home{support::ThrowawayHome::On::memory};

 private:
  std::unique_ptr<NoteStore> store_;
};

template <class Record>
std::vector<Record> all(const RecordList<Record>& list) {
  std::vector<Record> rows;
  list->forEach([&](const Record& row) { rows.push_back(row); });
  return rows;
}

}  // namespace tavi
