#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tavi {

/// The rows of a list or a search. Since they may be many and large, they are read from the store
/// during a pass, and a row exists only while it is visited. All passes over one list see the same
/// state of the store, which must outlive the list. Both functions throw if a read fails.
template <class Record>
class RecordSource {
 public:
  virtual ~RecordSource() = default;
  /// The number of rows, without reading them.
  virtual std::int64_t count() = 0;
  /// Calls `visit` with each row, in order.
  virtual void forEach(const std::function<void(const Record&)>& visit) = 0;
};

/// An owned list; never null.
template <class Record>
using RecordList = std::unique_ptr<RecordSource<Record>>;

/// A list of rows in memory.
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

/// Makes a list of rows in memory.
template <class Record>
RecordList<Record> recordList(std::vector<Record> rows = {}) {
  return std::make_unique<VectorSource<Record>>(std::move(rows));
}

}  // namespace tavi
