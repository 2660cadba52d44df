#include "store/make_store.h"

#include <string>

#include "domain/store_errors.h"
#include "platform/model/objects/core_data_stack.h"
#include "platform/model/search/search_index.h"
#include "platform/model/storage/kept_connection.h"
#include "platform/system/directories.h"
#include "store/database_store.h"
#include "store/preferences.h"

namespace tavi {

StoreKeeper::StoreKeeper()
    : kept_(std::make_unique<tavimodel::KeptConnection>(tavimodel::updateSearchIndex)) {}

StoreKeeper::~StoreKeeper() = default;

bool StoreKeeper::work() {
  if (!TaviPreferences::isApplicationLockEnabled()) return kept_->work();
  kept_->drop();
  return false;
}

namespace {

std::unique_ptr<TaviDatabaseStore> openStore(const StoreOptions& options,
                                             tavimodel::KeptConnection* kept) {
  if (TaviPreferences::isApplicationLockEnabled()) throw NoteStoreError::appLockEnabled();
  using Stack = tavimodel::KVCoreDataStackForExtensions;
  std::string reason;  // not shown: the platform's message does not help the user
  const auto folder = platform::system::applicationDataDirectory();
  if (!folder) throw NoteStoreError::storeUnavailable("cannot open Tavi database");
  auto stack = Stack::initStackOutputError(
      *folder, reason, options.onlyReads ? Stack::Access::readOnly : Stack::Access::readWrite,
      kept);
  if (!stack) throw NoteStoreError::storeUnavailable("cannot open Tavi database");
  return std::make_unique<TaviDatabaseStore>(std::move(stack), options.preserveModificationDate);
}

}  // namespace

std::unique_ptr<NoteStore> makeStore(const StoreOptions& options) {
  return openStore(options, options.keeper != nullptr ? options.keeper->kept_.get() : nullptr);
}

std::unique_ptr<ImportingStore> makeImportingStore() {
  return openStore({}, nullptr);
}

}  // namespace tavi
