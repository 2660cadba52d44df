#include "platform/text/string_search.h"

#include <algorithm>
#include <string>

#include "platform/text/byte_scan.h"
#include "platform/text/comparison_units.h"
#include "platform/text/lookalikes.h"
#include "platform/text/unit_search.h"

namespace platform::text {
namespace {

/// Whether a match that ends at `position` would end inside a unit.
bool isInsideUnit(std::string_view text, std::size_t position) {
  if (position == text.size() || static_cast<unsigned char>(text[position]) < 0x80) return false;
  const DecodedScalar scalar = decodeScalar(text, position);
  return scalar.wellFormed && attachesToPrevious(scalar.value);
}

/// The comparison form of a text if that is ASCII, so that a Kelvin sign is searched for as a "K";
/// otherwise absent.
std::optional<std::string> asASCII(std::string_view text, CaseFolding folding) {
  std::string form = comparisonForm(text, folding);
  return isASCII(form) ? std::optional(std::move(form)) : std::nullopt;
}

/// A needle, prepared for each kind of search.
struct Needle {
  Needle(std::string_view source, CaseFolding caseFolding) : text(source), folding(caseFolding) {
    if (!isASCII(text)) text = asASCII(text, folding).value_or(text);
    if (text.empty() || !isASCII(text)) return;
    bytes.emplace(text, folding == CaseFolding::full);
    for (const std::string_view lookalike : lookalikesIn(text, folding)) {
      lookalikes.emplace_back(lookalike, false);
    }
  }

  const UnitNeedle& inUnits() const {
    if (!units) units.emplace(text, folding);
    return *units;
  }

  bool hasLookalikeIn(std::string_view part) const {
    return !lookalikes.empty() && !isASCII(part) &&
           std::any_of(lookalikes.begin(), lookalikes.end(), [&](const BytePattern& lookalike) {
             return ByteScan(lookalike, part, 0).next().has_value();
           });
  }

  std::string text;
  CaseFolding folding;
  std::optional<BytePattern> bytes;         // of an ASCII needle
  std::vector<BytePattern> lookalikes;      // of parts of an ASCII needle
  mutable std::optional<UnitNeedle> units;  // created on first use
};

/// Iterates over the matches of a needle in one text.
///
/// An ASCII needle is searched for in the bytes up to a scalar that could be part of a match
/// without having the needle's bytes. From the last match before that scalar, and for other needles
/// from the start, the text is searched in comparison form.
class Matches {
 public:
  Matches(const Needle& needle, std::string_view text, std::size_t from)
      : needle_(needle), text_(text), from_(from) {
    if (needle.text.empty() || from >= text.size()) return;
    if (needle.bytes) {
      scan_.emplace(*needle.bytes, text, from);
    } else if (!isASCII(text.substr(from))) {
      searchInUnits();
    }
  }

  std::optional<ByteRange> next() {
    if (scan_) {
      const std::optional<ByteRange> match = nextInBytes();
      const std::size_t end = match ? match->end : text_.size();
      if (!scan_->gaveUp() && !needle_.hasLookalikeIn(text_.substr(from_, end - from_))) {
        from_ = end;
        return match;
      }
      scan_.reset();
      searchInUnits();
    }
    return units_ ? units_->next() : std::nullopt;
  }

 private:
  std::optional<ByteRange> nextInBytes() {
    while (const std::optional<std::size_t> begin = scan_->next()) {
      const std::size_t end = *begin + needle_.bytes->size();
      if (isInsideUnit(text_, end)) continue;
      scan_->skipTo(end);
      return ByteRange{*begin, end};
    }
    return std::nullopt;
  }

  void searchInUnits() {
    units_.emplace(needle_.inUnits(), text_, from_, ScalarForms::shared(needle_.folding));
  }

  const Needle& needle_;
  std::string_view text_;
  std::size_t from_;  // the end of the last match
  std::optional<ByteScan> scan_;
  std::optional<UnitSearch> units_;
};

}  // namespace

struct StringSearch::Impl {
  Needle needle;
};

StringSearch::StringSearch(std::string_view needle, CaseFolding folding)
    : impl_(new Impl{{needle, folding}}) {}
StringSearch::~StringSearch() = default;
StringSearch::StringSearch(StringSearch&&) noexcept = default;
StringSearch& StringSearch::operator=(StringSearch&&) noexcept = default;

std::optional<ByteRange> StringSearch::find(std::string_view text, std::size_t from) const {
  return Matches(impl_->needle, text, from).next();
}

std::vector<ByteRange> StringSearch::findAll(std::string_view text, std::size_t limit) const {
  std::vector<ByteRange> result;
  Matches matches(impl_->needle, text, 0);
  while (result.size() < limit) {
    const std::optional<ByteRange> match = matches.next();
    if (!match) break;
    result.push_back(*match);
  }
  return result;
}

bool StringSearch::isIn(std::string_view text) const {
  return find(text).has_value();
}

bool containsBytes(std::string_view text, std::string_view bytes) {
  if (bytes.empty()) return true;
  const BytePattern pattern(bytes, /*ignoreCase=*/false);
  ByteScan scan(pattern, text, 0);
  if (scan.next()) return true;
  return scan.gaveUp() && text.find(bytes) != std::string_view::npos;
}

}  // namespace platform::text
