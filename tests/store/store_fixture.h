#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "domain/note_store.h"
#include "domain/store_errors.h"
#include "store/make_store.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavi {

/// A store on a database of the test's own. `fresh()` gives a new store, as each command has one.
class StoreTest : public testing::Test {
 protected:
  std::unique_ptr<NoteStore> fresh(bool preserveModificationDate = false) {
    return makeStore({.preserveModificationDate = preserveModificationDate});
  }

  std::string create(const std::string& text) {
    return fresh()->createNoteFromText(text, {}).metadata.id;
  }
  std::string text(const std::string& id) { return fresh()->noteWithID(id).content; }
  NoteMetadata metadata(const std::string& id) { return fresh()->metadataWithID(id); }

  /// Another program, by plain SQL.
  void otherProgram(const std::string& sql) { support::ForeignClient(home.database()).run(sql); }
  std::string value(const std::string& sql) {
    return support::ForeignClient(home.database()).value(sql);
  }
  void lock(const std::string& id) {
    otherProgram("UPDATE note SET encrypted = 1 WHERE uniqueIdentifier = '" + id + "'");
  }

  support::ThrowawayHome home;
};

using Texts = std::vector<std::string>;

template <class Action>
std::string refusal(Action action) {
  try {
    action();
  } catch (const NoteStoreError& error) {
    return std::string(error.code());
  }
  return "not refused";
}

template <class Record>
std::vector<Record> all(const RecordList<Record>& list) {
  std::vector<Record> rows;
  list->forEach([&](const Record& row) { rows.push_back(row); });
  return rows;
}

}  // namespace tavi
