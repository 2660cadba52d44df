#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace tavimodel {

/// Keeps copies of many short texts in a few large blocks, which go together.
class StringArena {
 public:
  std::string_view keep(std::string_view text) {
    if (text.empty()) return {};
    if (text.size() > left_) addBlock(text.size());
    char* copy = next_;
    std::memcpy(copy, text.data(), text.size());
    next_ += text.size();
    left_ -= text.size();
    return {copy, text.size()};
  }

 private:
  static constexpr std::size_t firstBlock = std::size_t{16} << 10;
  static constexpr std::size_t largestBlock = std::size_t{1} << 20;

  void addBlock(std::size_t needed) {
    blockSize_ = std::min(blockSize_ * 2, largestBlock);
    left_ = std::max(blockSize_, needed);
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(left_));
    next_ = blocks_.back().get();
  }

  std::vector<std::unique_ptr<char[]>> blocks_;
  std::size_t blockSize_ = firstBlock / 2;
  char* next_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace tavimodel
