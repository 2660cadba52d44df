#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/model/search/search_query.h"

namespace tavimodel {

enum class SortKey { pinned, modificationDate, creationDate, title };

struct SortDescriptor {
  SortKey key;
  bool ascending;
  /// Titles by the user's locale and without case, instead of by code points.
  bool localized = false;
};

/// Where notes are. One that is both in the trash and in the archive is in both; one that has been
/// deleted for good is nowhere.
enum class Place { anywhere, notes, trash, archive };

/// A test over the columns of `noteSummary s`.
std::string_view placeTest(Place place);

/// Which notes to fetch, and in which order. Of notes that are equal in every descriptor the one
/// that was made last comes first, whatever the descriptors' directions. An absent title is equal
/// to an empty one, an absent date earlier than all others.
struct FetchRequest {
  Place place = Place::anywhere;
  std::shared_ptr<const SearchQuery> search;  ///< null: all notes of the place
  std::vector<SortDescriptor> sortDescriptors;
  std::int64_t fetchOffset = 0;
  std::int64_t fetchLimit = INT64_MAX;
  /// Whether the notes' facts of text, pins and files are looked at.
  bool detailed = true;
};

}  // namespace tavimodel
