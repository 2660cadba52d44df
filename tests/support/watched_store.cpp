#include "support/watched_store.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "store/database_store.h"

namespace support {
namespace {

using Stack = tavimodel::KVCoreDataStackForExtensions;

class WatchedStore : public tavi::TaviDatabaseStore {
 public:
  WatchedStore(std::unique_ptr<Stack> stack, std::function<void()> closed)
      : TaviDatabaseStore(std::move(stack), false), closed_(std::move(closed)) {}
  ~WatchedStore() override { closed_(); }

 private:
  std::function<void()> closed_;
};

}  // namespace

std::unique_ptr<tavi::NoteStore> watchedStore(const std::filesystem::path& folder,
                                              std::function<void()> closed) {
  std::string error;
  auto stack = Stack::initStackOutputError(folder, error);
  if (!stack) throw std::runtime_error(error);
  return std::make_unique<WatchedStore>(std::move(stack), std::move(closed));
}

}  // namespace support
