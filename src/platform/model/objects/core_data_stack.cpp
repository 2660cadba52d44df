#include "platform/model/objects/core_data_stack.h"

#include <exception>

#include "platform/model/search/search_index.h"

namespace tavimodel {

std::unique_ptr<KVCoreDataStackForExtensions> KVCoreDataStackForExtensions::initStackOutputError(
    const std::filesystem::path& folder, std::string& error, Access access, KeptConnection* kept) {
  try {
    return std::unique_ptr<KVCoreDataStackForExtensions>(
        new KVCoreDataStackForExtensions(folder, access, kept));
  } catch (const std::exception& failure) {
    error = failure.what();
    return nullptr;
  }
}

KVCoreDataStackForExtensions::KVCoreDataStackForExtensions(const std::filesystem::path& folder,
                                                           Access access, KeptConnection* kept)
    : database_(folder, access, updateSearchIndex, kept),
      context_(database_.connection(), database_.files()) {}

KVCoreDataStackForExtensions::~KVCoreDataStackForExtensions() {
  context_.reset();
}

}  // namespace tavimodel
