#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/model/search/search_query.h"

namespace tavimodel {

/// The attributes that notes can be sorted by.
enum class SortKey { pinned, modificationDate, creationDate, title };

/// One criterion of an order.
struct SortDescriptor {
  SortKey key;
  bool ascending;
  /// Compare titles by the user's locale and ignoring case, instead of by code points.
  bool localized = false;
};

/// A location of notes. A note can be in the trash and the archive at once; a permanently deleted
/// note is in none.
enum class Place { anywhere, notes, trash, archive };

/// Returns an SQL test on the columns of `noteSummary s`, for which there are indexes.
std::string_view placeTest(Place place);
/// Returns the same test on one column, for a scan of all rows, which needs no index.
std::string_view placeTestOfScan(Place place);

/// Which notes to fetch, and in which order. Notes that are equal in all descriptors are sorted by
/// descending id, whatever the descriptors' directions. An absent title equals an empty one, and an
/// absent date precedes all others.
struct FetchRequest {
  Place place = Place::anywhere;
  std::shared_ptr<const SearchQuery> search;  ///< null: all notes of `place`
  std::vector<SortDescriptor> sortDescriptors;
  std::int64_t fetchOffset = 0;
  std::int64_t fetchLimit = INT64_MAX;
  /// Whether to fetch the notes' text facts, pins and files, too.
  bool detailed = true;
};

}  // namespace tavimodel
