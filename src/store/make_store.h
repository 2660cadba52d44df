#pragma once

#include <memory>

#include "domain/importing_store.h"

namespace tavi {

struct StoreOptions {
  bool preserveModificationDate = false;  ///< writes of text leave the note's date as it is
  bool onlyReads = false;  ///< the database must be there; nothing is made, and nobody waited for
};

/// Opens the application's notes, once per command or tool call; releasing the store closes them.
/// Throws NoteStoreError: `appLockEnabled` when the application is locked, before anything is
/// opened, and `storeUnavailable` when the database cannot be had.
std::unique_ptr<NoteStore> makeStore(const StoreOptions& options = {});

/// The same store, for a program that brings whole notes in.
std::unique_ptr<ImportingStore> makeImportingStore();

}  // namespace tavi
