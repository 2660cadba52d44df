#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/model/search/note_search.h"
#include "store/database_store.h"
#include "store/note_conversion.h"

namespace tavi {
namespace {

using tavimodel::FetchRequest;
using tavimodel::ManagedObjectContext;
using tavimodel::NoteTable;
using tavimodel::NoteView;
using tavimodel::Place;
using tavimodel::searchForTag;
using tavimodel::SearchQuery;
using tavimodel::SearchTerms;
using tavimodel::SortKey;

Place placeOf(std::optional<NoteLocation> location) {
  if (!location) return Place::anywhere;
  switch (*location) {
    case NoteLocation::notes:
      return Place::notes;
    case NoteLocation::trash:
      return Place::trash;
    case NoteLocation::archive:
      return Place::archive;
  }
  return Place::anywhere;
}

SortKey sortKey(SortField field) {
  switch (field) {
    case SortField::pinned:
      return SortKey::pinned;
    case SortField::modified:
      return SortKey::modificationDate;
    case SortField::created:
      return SortKey::creationDate;
    case SortField::title:
      return SortKey::title;
  }
  return SortKey::pinned;
}

/// `localized`: sort titles by the user's locale, ignoring case, as a search does. A list sorts
/// them by code points.
FetchRequest fetchRequest(const ListRequest& request, std::shared_ptr<const SearchQuery> search,
                          bool localized) {
  FetchRequest fetch;
  fetch.place = placeOf(request.location);
  fetch.search = std::move(search);
  for (const SortCriterion& criterion : request.sort) {
    fetch.sortDescriptors.push_back(
        {sortKey(criterion.field), criterion.order == SortOrder::asc, localized});
  }
  fetch.fetchOffset = request.offset;
  fetch.fetchLimit = request.limit;
  fetch.detailed = request.detailed;
  return fetch;
}

FetchRequest listRequest(const ListRequest& request) {
  if (!request.tag) return fetchRequest(request, nullptr, false);
  return fetchRequest(request, searchForTag(*request.tag), true);
}

/// The rows of one fetch. The fetch runs at the first pass; each pass reads the texts again, one at
/// a time.
template <class Record>
class FetchedList final : public RecordSource<Record> {
 public:
  using Visitor = typename RecordSource<Record>::Visitor;
  /// Fills the row from a note and its text, which is empty unless `readsText`. Threads call it at
  /// the same time.
  using Convert = std::function<void(const NoteView&, std::string_view text, Record& row)>;

  FetchedList(ManagedObjectContext& context, FetchRequest request, bool readsText, Convert convert)
      : context_(context),
        request_(std::move(request)),
        readsText_(readsText),
        convert_(std::move(convert)) {}

  std::int64_t count() override {
    if (table_) return static_cast<std::int64_t>(table_->size());
    const std::int64_t all = context_.count(request_);
    const std::int64_t left = std::max<std::int64_t>(0, all - request_.fetchOffset);
    return std::min(left, request_.fetchLimit);
  }

  void forEach(const Visitor& visit) override {
    if (load()) return forEachBetween(0, count(), visit);
    Record row;  // reused for all rows to save allocations
    context_.forEachText(*table_, [&](const NoteView& note, std::string_view text) {
      convert_(note, text, row);
      visit(row);
    });
  }

  bool load() override {
    if (!table_) table_ = context_.fetch(request_);
    return !readsText_;
  }

  void forEachBetween(std::int64_t first, std::int64_t last, const Visitor& visit) const override {
    Record row;  // reused, as above
    std::vector<std::string_view> tags;
    for (std::int64_t i = first; i < last; ++i) {
      convert_(table_->note(static_cast<std::size_t>(i), tags), {}, row);
      visit(row);
    }
  }

 private:
  ManagedObjectContext& context_;
  FetchRequest request_;
  bool readsText_;
  Convert convert_;
  std::optional<NoteTable> table_;
};

template <class Record>
RecordList<Record> fetched(ManagedObjectContext& context, FetchRequest request, bool readsText,
                           typename FetchedList<Record>::Convert convert) {
  return std::make_unique<FetchedList<Record>>(context, std::move(request), readsText,
                                               std::move(convert));
}

std::int64_t matchesIn(std::string_view text, const SearchTerms* counted) {
  return counted != nullptr ? counted->numberOfMatches(text) : 0;
}

void convert(const NoteView& note, std::string_view text, Note& row) {
  convert(note, row.metadata);
  row.content = note.encrypted ? std::string_view() : text;
}

}  // namespace

RecordList<NoteMetadata> TaviDatabaseStore::listNotes(const ListRequest& request) {
  return fetched<NoteMetadata>(
      context(), listRequest(request), false,
      [](const NoteView& note, std::string_view, NoteMetadata& row) { convert(note, row); });
}

RecordList<Note> TaviDatabaseStore::listNotesWithContent(const ListRequest& request) {
  return fetched<Note>(
      context(), listRequest(request), true,
      [](const NoteView& note, std::string_view text, Note& row) { convert(note, text, row); });
}

RecordList<SearchResult> TaviDatabaseStore::searchNotes(const std::string& query,
                                                        const ListRequest& request) {
  const tavimodel::NoteSearch search = tavimodel::readSearch(query);
  return fetched<SearchResult>(
      context(), fetchRequest(request, search.query, true), search.counted != nullptr,
      [counted = search.counted](const NoteView& note, std::string_view text, SearchResult& row) {
        convert(note, row.metadata);
        row.matchCount = matchesIn(text, counted.get());
      });
}

RecordList<SearchResultWithContent> TaviDatabaseStore::searchNotesWithContent(
    const std::string& query, const ListRequest& request) {
  const tavimodel::NoteSearch search = tavimodel::readSearch(query);
  return fetched<SearchResultWithContent>(
      context(), fetchRequest(request, search.query, true), true,
      [counted = search.counted](const NoteView& note, std::string_view text,
                                 SearchResultWithContent& row) {
        convert(note, text, row.note);
        row.matchCount = matchesIn(text, counted.get());
      });
}

}  // namespace tavi
