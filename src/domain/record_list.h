#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tavi {

/// The rows of a list or a search, which may be many and large: they are read from the store as
/// they are asked for, and a row lives only while it is looked at. All passes over one list see
/// the same state of the store, for as long as the store lives. A failing read throws from here.
template <class Record>
class RecordSource {
 public:
  virtual ~RecordSource() = default;
  /// The number of rows; the rows themselves are not read for it.
  virtual std::int64_t count() = 0;
  /// Calls `visit` with each row, in order.
  virtual void forEach(const std::function<void(const Record&)>& visit) = 0;
};

template <class Record>
using RecordList = std::unique_ptr<RecordSource<Record>>;

/// A list that is in memory already.
template <class Record>
class VectorSource final : public RecordSource<Record> {
 public:
  explicit VectorSource(std::vector<Record> rows) : rows_(std::move(rows)) {}
  std::int64_t count() override { return static_cast<std::int64_t>(rows_.size()); }
  void forEach(const std::function<void(const Record&)>& visit) override {
    for (const Record& row : rows_) visit(row);
  }

 private:
  std::vector<Record> rows_;
};

template <class Record>
RecordList<Record> recordList(std::vector<Record> rows = {}) {
  return std::make_unique<VectorSource<Record>>(std::move(rows));
}

/// The rows of `source`, each passed through `convert` as it is visited.
template <class To, class From>
RecordList<To> mapped(RecordList<From> source, std::function<To(const From&)> convert) {
  class Mapped final : public RecordSource<To> {
   public:
    Mapped(RecordList<From> from, std::function<To(const From&)> by)
        : source_(std::move(from)), convert_(std::move(by)) {}
    std::int64_t count() override { return source_->count(); }
    void forEach(const std::function<void(const To&)>& visit) override {
      source_->forEach([&](const From& row) { visit(convert_(row)); });
    }

   private:
    RecordList<From> source_;
    std::function<To(const From&)> convert_;
  };
  return std::make_unique<Mapped>(std::move(source), std::move(convert));
}

}  // namespace tavi
