#include <functional>
#include <optional>
#include <utility>

#include "domain/invalid_query.h"
#include "platform/model/search/search_manager.h"
#include "platform/model/search/search_query.h"
#include "store/database_store.h"
#include "store/note_conversion.h"

namespace tavi {
namespace {

using tavimodel::FetchRequest;
using tavimodel::KVNoteSearchManager;
using tavimodel::ManagedObjectContext;
using tavimodel::NoteTable;
using tavimodel::NoteView;
using tavimodel::Predicate;
using tavimodel::SearchTermCounter;
using tavimodel::SortKey;

std::optional<Predicate> locationPredicate(std::optional<NoteLocation> location) {
  if (!location) return std::nullopt;
  switch (*location) {
    case NoteLocation::notes:
      return Predicate::withFormat("trashed == NO AND archived == NO");
    case NoteLocation::trash:
      return Predicate::withFormat("trashed == YES");
    case NoteLocation::archive:
      return Predicate::withFormat("archived == YES");
  }
  return std::nullopt;
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

/// A list sorts titles by code points, a search and a list of a tag's notes as the user's locale
/// does and without case.
FetchRequest fetchRequest(const ListRequest& request, std::optional<Predicate> search,
                          bool isSearch) {
  std::vector<Predicate> parts;
  if (auto location = locationPredicate(request.location)) parts.push_back(std::move(*location));
  parts.push_back(Predicate::withFormat("permanentlyDeleted == NO OR permanentlyDeleted == nil"));
  if (search) parts.push_back(std::move(*search));
  if (request.tag) parts.push_back(KVNoteSearchManager::predicateForTag(*request.tag));
  FetchRequest fetch;
  fetch.predicate = Predicate::andPredicate(parts);
  for (const SortCriterion& criterion : request.sort) {
    fetch.sortDescriptors.push_back(
        {sortKey(criterion.field), criterion.order == SortOrder::asc, isSearch || request.tag});
  }
  fetch.fetchOffset = request.offset;
  fetch.fetchLimit = request.limit;
  fetch.detailed = request.detailed;
  return fetch;
}

/// The rows of one fetch, which is made when the first row is asked for; texts come one at a time,
/// each time round.
template <class Record>
class FetchedList final : public RecordSource<Record> {
 public:
  /// Makes a row of a note, and of its text where the row has or counts it.
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

  void forEach(const std::function<void(const Record&)>& visit) override {
    if (!table_) table_ = context_.fetch(request_);
    Record row;  // one for all, so that its memory is used again
    if (readsText_) {
      context_.forEachText(*table_, [&](const NoteView& note, std::string_view text) {
        convert_(note, text, row);
        visit(row);
      });
      return;
    }
    for (std::size_t i = 0; i < table_->size(); ++i) {
      table_->prefetch(i + 8);
      convert_((*table_)[i], {}, row);
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

struct ParsedSearch {
  std::optional<Predicate> predicate;
  std::shared_ptr<const SearchTermCounter> counter;  ///< null: nothing to count

  std::int64_t matchesIn(std::string_view text) const {
    return counter ? counter->numberOfMatches(text) : 0;
  }
};

ParsedSearch parsed(const std::string& query) {
  try {
    ParsedSearch search{KVNoteSearchManager::predicateForSearchString(query), nullptr};
    if (auto counter = KVNoteSearchManager::defaultSearchRegexForSearchString(query)) {
      search.counter = std::make_shared<SearchTermCounter>(std::move(*counter));
    }
    return search;
  } catch (const tavimodel::SearchSyntaxError& error) {
    throw InvalidQuery(error.what());
  }
}

void convert(const NoteView& note, std::string_view text, Note& row) {
  convert(note, row.metadata);
  row.content = note.encrypted ? std::string_view() : text;
}

}  // namespace

RecordList<NoteMetadata> TaviDatabaseStore::listNotes(const ListRequest& request) {
  return fetched<NoteMetadata>(
      context(), fetchRequest(request, std::nullopt, false), false,
      [](const NoteView& note, std::string_view, NoteMetadata& row) { convert(note, row); });
}

RecordList<Note> TaviDatabaseStore::listNotesWithContent(const ListRequest& request) {
  return fetched<Note>(
      context(), fetchRequest(request, std::nullopt, false), true,
      [](const NoteView& note, std::string_view text, Note& row) { convert(note, text, row); });
}

RecordList<SearchResult> TaviDatabaseStore::searchNotes(const std::string& query,
                                                        const ListRequest& request) {
  const ParsedSearch search = parsed(query);
  return fetched<SearchResult>(
      context(), fetchRequest(request, search.predicate, true), search.counter != nullptr,
      [search](const NoteView& note, std::string_view text, SearchResult& row) {
        convert(note, row.metadata);
        row.matchCount = search.matchesIn(text);
      });
}

RecordList<SearchResultWithContent> TaviDatabaseStore::searchNotesWithContent(
    const std::string& query, const ListRequest& request) {
  const ParsedSearch search = parsed(query);
  return fetched<SearchResultWithContent>(
      context(), fetchRequest(request, search.predicate, true), true,
      [search](const NoteView& note, std::string_view text, SearchResultWithContent& row) {
        convert(note, text, row.note);
        row.matchCount = search.matchesIn(text);
      });
}

}  // namespace tavi
