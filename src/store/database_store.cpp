#include "store/database_store.h"

#include <utility>

namespace tavi {

TaviDatabaseStore::TaviDatabaseStore(std::unique_ptr<tavimodel::KVCoreDataStackForExtensions> stack,
                                     bool preserveModificationDate)
    : stack_(std::move(stack)), preserveModificationDate_(preserveModificationDate) {}

TaviDatabaseStore::~TaviDatabaseStore() = default;

void TaviDatabaseStore::reset() {
  context().reset();
}

}  // namespace tavi
