#include "platform/model/storage/database.h"

#include <utility>

#include "platform/model/storage/closing.h"
#include "platform/model/storage/schema.h"
#include "platform/model/storage/write_ahead_log.h"

namespace tavimodel {
namespace {

/// Size in bytes from which even a server that is never idle checkpoints its log, because each
/// program that opens the database reads the whole log.
constexpr std::uintmax_t longLog = std::uintmax_t{4} << 20;

}  // namespace

Database::Database(const std::filesystem::path& folder, Access access, IndexUpdate updateIndex,
                   KeptConnection* kept)
    : folder_(folder),
      kept_(kept),
      opened_(kept != nullptr ? DatabaseIdentity::of(folder) : DatabaseIdentity{}),
      connection_(kept != nullptr ? kept->take(folder) : nullptr),
      files_(folder / "files"),
      updateIndex_(updateIndex) {
  if (!connection_) {
    connection_ = openDatabase(folder, access);
    if (!connection_->isRefused()) repairLockFlags(*connection_);
  }
  if (kept != nullptr && !connection_->isRefused()) dataVersion_ = connection_->dataVersion();
}

Database::~Database() {
  if (kept_ != nullptr && logSize(databaseIn(folder_)) < longLog) {
    kept_->keep(std::move(connection_), folder_, opened_, dataVersion_);
    return;
  }
  tidy(*connection_, files_, updateIndex_, closingBudget);
  checkpointAndClose(std::move(connection_), folder_);
}

}  // namespace tavimodel
