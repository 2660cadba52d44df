#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tavi {

/// The rows of a list or a search. Since they may be many and large, they are read from the store
/// during a pass, and a row exists only while it is visited. All passes over one list see the same
/// state of the store, which must outlive the list. Functions throw if a read fails.
template <class Record>
class RecordSource {
 public:
  using Visitor = std::function<void(const Record&)>;

  virtual ~RecordSource() = default;
  /// The number of rows, without reading them.
  virtual std::int64_t count() = 0;
  /// Calls `visit` with each row, in order.
  virtual void forEach(const Visitor& visit) = 0;

  /// Reads from the store what the rows need, unless that would be too large. Returns whether it
  /// has, so that `forEachBetween` may be called.
  virtual bool load() { return false; }
  /// Calls `visit` with each row from index `first` up to but not including `last`, in order.
  /// Threads may do so at the same time. Only after `load` has returned true.
  virtual void forEachBetween(std::int64_t first, std::int64_t last,
                              const Visitor& visit) const = 0;
};

/// An owned list; never null.
template <class Record>
using RecordList = std::unique_ptr<RecordSource<Record>>;

/// A list of rows in memory.
template <class Record>
class VectorSource final : public RecordSource<Record> {
 public:
  using Visitor = typename RecordSource<Record>::Visitor;

  explicit VectorSource(std::vector<Record> rows) : rows_(std::move(rows)) {}
  std::int64_t count() override { return static_cast<std::int64_t>(rows_.size()); }
  void forEach(const Visitor& visit) override { forEachBetween(0, count(), visit); }
  bool load() override { return true; }
  void forEachBetween(std::int64_t first, std::int64_t last, const Visitor& visit) const override {
    std::for_each(rows_.begin() + first, rows_.begin() + last, visit);
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
