#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace tavimodel {

/// Stores copies of many short strings in a few large blocks, which are freed together.
class StringArena {
 public:
  std::string_view keep(std::string_view text) {
    if (text.empty()) return {};
    return {keep(text, {}), text.size()};
  }

  /// Copies both strings, one directly after the other.
  const char* keep(std::string_view text, std::string_view more) {
    const std::size_t size = text.size() + more.size();
    if (size > left_) addBlock(size);
    char* copy = next_;
    std::copy(more.begin(), more.end(), std::copy(text.begin(), text.end(), copy));
    next_ += size;
    left_ -= size;
    return copy;
  }

 private:
  static constexpr std::size_t firstBlock = std::size_t{16} << 10;  ///< bytes
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
