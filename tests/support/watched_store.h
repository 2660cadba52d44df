#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "domain/note_store.h"

namespace support {

/// Opens the store on the database in `folder`; calls `closed` when the store is destroyed.
std::unique_ptr<tavi::NoteStore> watchedStore(const std::filesystem::path& folder,
                                              std::function<void()> closed);

}  // namespace support
