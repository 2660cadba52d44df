#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/model/search/predicate.h"

namespace tavimodel {

enum class SortKey { pinned, modificationDate, creationDate, title };

struct SortDescriptor {
  SortKey key;
  bool ascending;
  /// Titles by the user's locale and without case, instead of by code points.
  bool localized = false;
};

/// Which notes to fetch, and in which order. Of notes that are equal in every descriptor the one
/// that was made last comes first, whatever the descriptors' directions. An absent title is equal
/// to an empty one, an absent date earlier than all others.
struct FetchRequest {
  Predicate predicate;
  std::vector<SortDescriptor> sortDescriptors;
  std::int64_t fetchOffset = 0;
  std::int64_t fetchLimit = INT64_MAX;
  /// Whether the notes' facts of text, pins and files are looked at.
  bool detailed = true;
};

}  // namespace tavimodel
