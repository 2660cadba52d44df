#include "platform/model/storage/database.h"

#include <utility>

#include "platform/model/storage/closing.h"
#include "platform/model/storage/schema.h"

namespace tavimodel {

Database::Database(const std::filesystem::path& folder, Access access, IndexUpdate updateIndex,
                   KeptConnection* kept)
    : folder_(folder),
      kept_(kept),
      opened_(kept != nullptr ? DatabaseIdentity::of(folder) : DatabaseIdentity{}),
      connection_(kept != nullptr ? kept->take(folder, opened_) : nullptr),
      files_(folder / "files"),
      updateIndex_(updateIndex) {
  const bool isKept = connection_ != nullptr;
  if (!isKept) {
    if (kept != nullptr && opened_.database.exists && !opened_.isSettled()) {
      DatabaseIdentity::settle(folder);
      opened_ = DatabaseIdentity::of(folder);
    }
    connection_ = openDatabase(folder, access);
    if (!connection_->isRefused()) repairLockFlags(*connection_);
  }
  if (kept != nullptr && !connection_->isRefused()) {
    dataVersion_ = isKept ? kept->dataVersion() : connection_->dataVersion();
  }
}

Database::~Database() {
  if (kept_ != nullptr) {
    kept_->keep(std::move(connection_), folder_, opened_, dataVersion_);
    return;
  }
  tidy(*connection_, files_, updateIndex_, closingBudget);
  checkpointAndClose(std::move(connection_), folder_);
}

}  // namespace tavimodel
