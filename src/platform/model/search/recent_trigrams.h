#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "platform/model/search/trigrams.h"

namespace tavimodel {

/// The packed trigrams of up to 64 consecutive notes, with a bit for each note.
///
/// Most of the time of indexing goes into noting trigrams one by one. So these are not hashed, but
/// are themselves the indexes of a table, of 2 MB.
class RecentTrigrams {
 public:
  static constexpr int notes = 64;

  /// Returns true if no other of these notes has the trigram.
  bool add(PackedTrigram trigram, std::uint64_t noteBit) {
    std::uint64_t& word = words_[trigram];
    const bool isNew = word == 0;
    if (isNew) present_.push_back(trigram);
    word |= noteBit;
    return isNew;
  }

  /// The number of different trigrams.
  std::size_t size() const { return present_.size(); }

  /// Calls `visit` with each trigram and the bits of its notes, and removes them.
  template <class Visit>
  void drain(const Visit& visit) {
    for (const PackedTrigram trigram : present_) {
      visit(unpacked(trigram), std::exchange(words_[trigram], 0));
    }
    present_.clear();
  }

 private:
  struct Free {
    void operator()(std::uint64_t* words) const { std::free(words); }
  };
  /// From calloc, since the system then provides only the pages that are touched.
  static std::uint64_t* zeros() {
    void* words = std::calloc(packedTrigrams, sizeof(std::uint64_t));
    if (words == nullptr) throw std::bad_alloc();
    return static_cast<std::uint64_t*>(words);
  }

  std::unique_ptr<std::uint64_t[], Free> words_{zeros()};
  std::vector<PackedTrigram> present_;
};

}  // namespace tavimodel
