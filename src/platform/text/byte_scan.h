#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Searches for bytes at close to memory speed. Internal to this room.
namespace platform::text {

/// A byte string to search for, optionally ignoring the case of ASCII letters.
class BytePattern {
 public:
  /// `bytes` must not be empty. `ignoreCase` affects ASCII letters only.
  BytePattern(std::string_view bytes, bool ignoreCase);

  std::size_t size() const { return bytes_.size(); }

  /// One byte of the pattern. `mask` is 0x20, the bit that differs between cases, for a letter
  /// whose case is ignored, otherwise 0.
  struct Probe {
    char byte;
    char mask;
    bool fits(char c) const { return static_cast<char>(c | mask) == byte; }
  };
  Probe probe(std::size_t place) const { return {bytes_[place], mask_[place]}; }

 private:
  friend class ByteScan;

  std::string bytes_;
  std::string mask_;
  std::size_t rarest_ = 0;  // indices of the two bytes that are rarest in texts
  std::size_t secondRarest_ = 0;
};

/// One pass over a text. Compares the two rarest bytes of the pattern at sixteen positions at once,
/// and the whole pattern where both match.
///
/// In some texts almost every position needs a long comparison (a run of "a" in a longer run). The
/// scan then gives up, after a cost linear in the bytes scanned.
class ByteScan {
 public:
  ByteScan(const BytePattern& pattern, std::string_view text, std::size_t from)
      : pattern_(pattern), text_(text), from_(from), position_(from) {}

  /// The offset of the next match, which may overlap the last; absent at the end of the text, or if
  /// the scan gave up.
  std::optional<std::size_t> next();

  /// Continues from this offset.
  void skipTo(std::size_t position) { position_ = position; }

  bool gaveUp() const { return gaveUp_; }

 private:
  std::optional<std::size_t> nextAmong(unsigned candidates, std::size_t base);
  bool fitsAt(std::size_t position);

  const BytePattern& pattern_;
  std::string_view text_;
  std::size_t from_;
  std::size_t position_;
  std::size_t effort_ = 0;  // bytes compared one by one
  bool gaveUp_ = false;
};

}  // namespace platform::text
