#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Search for bytes at near the speed of memory. Inside this room only.
namespace platform::text {

/// What to look for: bytes, or ASCII letters without case.
class BytePattern {
 public:
  /// `bytes` is not empty. `ignoreCase` concerns ASCII letters.
  BytePattern(std::string_view bytes, bool ignoreCase);

  std::size_t size() const { return bytes_.size(); }

  /// One byte to look for. The mask is 0x20, the bit between the cases, for a letter whose case
  /// is left out.
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
  std::size_t rarest_ = 0;  // the place of the byte that is rarest in texts, and of the next one
  std::size_t secondRarest_ = 0;
};

/// One pass over a text. Compares the two rarest bytes of the pattern with sixteen places at once,
/// and looks at all of it where both fit.
///
/// A text can be made so that almost every place wants a long look (a pattern of many "a" in many
/// more). Then the scan gives up, at a cost that is linear in what it passed over.
class ByteScan {
 public:
  ByteScan(const BytePattern& pattern, std::string_view text, std::size_t from)
      : pattern_(pattern), text_(text), from_(from), position_(from) {}

  /// The next place of the pattern, overlapping ones included; nothing at the end, or when the
  /// scan gave up.
  std::optional<std::size_t> next();

  /// Goes on from here.
  void skipTo(std::size_t position) { position_ = position; }

  bool gaveUp() const { return gaveUp_; }

 private:
  std::optional<std::size_t> nextAmong(unsigned candidates, std::size_t base);
  bool fitsAt(std::size_t position);

  const BytePattern& pattern_;
  std::string_view text_;
  std::size_t from_;
  std::size_t position_;
  std::size_t effort_ = 0;  // bytes looked at one by one
  bool gaveUp_ = false;
};

}  // namespace platform::text
