#pragma once

#include <memory>

#include "domain/note_store.h"

namespace tavi {

struct StoreOptions {
  bool preserveModificationDate = false;  ///< writes leave the note's modification date as it is
};

/// Opens the application's database. Throws NoteStoreError (`appLockEnabled`, `storeUnavailable`).
std::unique_ptr<NoteStore> makeStore(const StoreOptions& options);

}  // namespace tavi
