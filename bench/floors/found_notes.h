#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/database.h"
#include "output.h"

namespace floors {

/// Collects the lines of a list in any order and prints them sorted: pinned notes first, then by
/// modification date, newest first.
class FoundNotes {
 public:
  /// The columns of `row`: pinned, modified, identifier, title, tags.
  void add(bench::Statement& row) {
    const std::size_t begin = lines_.size();
    lines_.append(row.text(2)).append("\t").append(row.text(3)).append("\t").append(row.text(4));
    lines_ += '\n';
    found_.push_back({row.integer(0) != 0, row.real(1), begin, lines_.size() - begin});
  }

  /// The same with the number of matches as a last column.
  void add(bench::Statement& row, std::size_t matches) {
    add(row);
    lines_.back() = '\t';
    lines_.append(std::to_string(matches)).append("\n");
    found_.back().size = lines_.size() - found_.back().begin;
  }

  void print(Output& output) {
    std::sort(found_.begin(), found_.end(), [](const Line& a, const Line& b) {
      return a.pinned != b.pinned ? a.pinned : a.modified > b.modified;
    });
    for (const Line& line : found_) {
      output << std::string_view(lines_).substr(line.begin, line.size);
    }
  }

 private:
  struct Line {
    bool pinned;
    double modified;
    std::size_t begin, size;
  };
  std::string lines_;
  std::vector<Line> found_;
};

}  // namespace floors
