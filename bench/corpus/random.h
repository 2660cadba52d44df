#pragma once

#include <cstddef>
#include <cstdint>

namespace corpus {

/// SplitMix64 (Steele, Lea, Flood: "Fast splittable pseudorandom number generators"): the same
/// numbers on every machine, which the standard library's distributions do not promise.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  /// A separate sequence for each index of each kind of data: note 17 is the same in every corpus.
  Random(std::uint64_t kind, std::uint64_t index) : state_(Random(kind).next() ^ index * 0x9E37) {
    next();
  }

  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return z ^ (z >> 31);
  }

  /// 0 to `count` - 1.
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(next() % count); }
  /// `from` to `to`, both included.
  std::size_t between(std::size_t from, std::size_t to) { return from + below(to - from + 1); }
  /// 0 to just under 1.
  double fraction() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }
  bool chance(double probability) { return fraction() < probability; }

 private:
  std::uint64_t state_;
};

}  // namespace corpus
