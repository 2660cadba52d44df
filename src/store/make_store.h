#pragma once

#include <memory>

#include "domain/importing_store.h"

namespace tavimodel {
class KeptConnection;
}

namespace tavi {

struct StoreOptions;

/// What a server keeps from one tool call to the next, below the store: the connection, as long as
/// opening the database anew would find the very same thing. Releasing it closes the database.
class StoreKeeper {
 public:
  StoreKeeper();
  ~StoreKeeper();
  StoreKeeper(const StoreKeeper&) = delete;
  StoreKeeper& operator=(const StoreKeeper&) = delete;

  /// For times when no call comes: does a slice, about 10 ms long, of what closing the database
  /// does otherwise. False when nothing is left to do. Never throws.
  bool work();

 private:
  friend std::unique_ptr<NoteStore> makeStore(const StoreOptions& options);
  std::unique_ptr<tavimodel::KeptConnection> kept_;
};

struct StoreOptions {
  bool preserveModificationDate = false;  ///< writes of text leave the note's date as it is
  bool onlyReads = false;  ///< the database must be there; nothing is made, and nobody waited for
  StoreKeeper* keeper = nullptr;  ///< a server's
};

/// Opens the application's notes, once per command or tool call; releasing the store closes them.
/// Throws NoteStoreError: `appLockEnabled` when the application is locked, before anything is
/// opened, and `storeUnavailable` when the database cannot be had.
std::unique_ptr<NoteStore> makeStore(const StoreOptions& options = {});

/// The same store, for a program that brings whole notes in.
std::unique_ptr<ImportingStore> makeImportingStore();

}  // namespace tavi
