#pragma once

#include <memory>

#include "domain/importing_store.h"

namespace tavimodel {
class KeptConnection;
}

namespace tavi {

struct StoreOptions;

/// Keeps the database connection open between the tool calls of a server. A store reuses it as long
/// as opening the database again would give the same file. The destructor closes the database.
class StoreKeeper {
 public:
  StoreKeeper();
  ~StoreKeeper();
  StoreKeeper(const StoreKeeper&) = delete;
  StoreKeeper& operator=(const StoreKeeper&) = delete;

  /// Call it while the server is idle: does about 10 ms of the work that closing the database would
  /// otherwise do. False if no work is left. Never throws.
  bool work();

 private:
  friend std::unique_ptr<NoteStore> makeStore(const StoreOptions& options);
  std::unique_ptr<tavimodel::KeptConnection> kept_;
};

/// How to open the store.
struct StoreOptions {
  bool preserveModificationDate = false;  ///< changes of texts keep the note's modification date
  bool onlyReads = false;  ///< fail if there is no database instead of creating it; never wait
  StoreKeeper* keeper = nullptr;  ///< of a server, which must outlive the store; null: none
};

/// Opens the application's database, for one command or tool call; destroying the store closes it.
/// Throws NoteStoreError: `appLockEnabled`, before opening anything, if the application's lock is
/// enabled, and `storeUnavailable` if the database cannot be opened.
std::unique_ptr<NoteStore> makeStore(const StoreOptions& options = {});

/// Opens the same store for importing. Throws like makeStore.
std::unique_ptr<ImportingStore> makeImportingStore();

}  // namespace tavi
