#include "platform/text/comparison_units.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>

namespace platform::text {
namespace {

/// Long enough for the decomposition or folding of one scalar, which has at most 4 scalars.
using UTF16Buffer = std::array<UChar, 16>;

const UNormalizer2* decomposer() {
  UErrorCode status = U_ZERO_ERROR;
  return unorm2_getNFDInstance(&status);
}

std::uint8_t combiningClass(char32_t scalar) {
  return u_getCombiningClass(static_cast<UChar32>(scalar));
}

/// Appends the scalars of `length` UTF-16 units; none if `length` is less than 1.
void appendUTF16(std::vector<char32_t>& out, const UTF16Buffer& buffer, int32_t length) {
  for (int32_t i = 0; i < length;) {
    UChar32 scalar = 0;
    U16_NEXT(buffer.data(), i, length, scalar);
    out.push_back(static_cast<char32_t>(scalar));
  }
}

void appendDecomposed(std::vector<char32_t>& out, char32_t scalar) {
  UTF16Buffer buffer;
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = unorm2_getDecomposition(decomposer(), static_cast<UChar32>(scalar),
                                                 buffer.data(), buffer.size(), &status);
  if (length < 0) return out.push_back(scalar);  // it has no decomposition
  appendUTF16(out, buffer, length);
}

void appendFolded(std::vector<char32_t>& out, char32_t scalar) {
  if (scalar == kIllFormed) return out.push_back(scalar);
  UTF16Buffer source;
  UTF16Buffer folded;
  int32_t sourceLength = 0;
  U16_APPEND_UNSAFE(source.data(), sourceLength, static_cast<UChar32>(scalar));
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = u_strFoldCase(folded.data(), folded.size(), source.data(), sourceLength,
                                       U_FOLD_CASE_DEFAULT, &status);
  appendUTF16(out, folded, length);
}

/// The canonical ordering algorithm (Unicode 15, 3.11, D109): a stable sort of each run of marks,
/// in O(n log n) even for a run as long as the text.
void sortMarks(std::vector<char32_t>& scalars) {
  const auto isMark = [](char32_t scalar) { return combiningClass(scalar) != 0; };
  for (auto run = scalars.begin(); run != scalars.end();) {
    run = std::find_if(run, scalars.end(), isMark);
    const auto runEnd = std::find_if_not(run, scalars.end(), isMark);
    std::stable_sort(run, runEnd,
                     [](char32_t a, char32_t b) { return combiningClass(a) < combiningClass(b); });
    run = runEnd;
  }
}

std::vector<char32_t> decomposed(std::span<const char32_t> scalars) {
  std::vector<char32_t> result;
  for (const char32_t scalar : scalars) appendDecomposed(result, scalar);
  sortMarks(result);
  return result;
}

/// The comparison form of decomposed scalars: the scalars themselves, or the NFD of their folding.
std::vector<char32_t> compared(std::vector<char32_t> scalars, CaseFolding folding) {
  if (folding == CaseFolding::none) return scalars;
  std::vector<char32_t> folded;
  for (const char32_t scalar : scalars) appendFolded(folded, scalar);
  return decomposed(folded);
}

bool isInOrder(ScalarForms::Form::CombiningClasses left,
               ScalarForms::Form::CombiningClasses right) {
  return (right.decomposed == 0 || left.decomposed <= right.decomposed) &&
         (right.form == 0 || left.form <= right.form);
}

/// Whether the scalar is in a block without decompositions, case and marks. These bypass the cache,
/// since a Chinese text has more of them than it can hold.
bool isOwnForm(char32_t scalar) {
  return (scalar >= 0x3400 && scalar <= 0x4DBF) || (scalar >= 0x4E00 && scalar <= 0x9FFF);
}

char lowercased(char ascii) {
  return static_cast<char>(ascii >= 'A' && ascii <= 'Z' ? ascii | 0x20 : ascii);
}

/// Lower-cases eight letters at once. In no step does a carry reach the next byte, since all bytes
/// are below 0x80.
std::uint64_t lowercased(std::uint64_t ascii) {
  constexpr std::uint64_t ones = 0x0101010101010101;
  const std::uint64_t fromA = ascii + (0x80 - 'A') * ones;        // the highest bit: not below 'A'
  const std::uint64_t behindZ = ascii + (0x80 - 'Z' - 1) * ones;  // the highest bit: above 'Z'
  return ascii | ((fromA & ~behindZ & 0x80 * ones) >> 2);
}

}  // namespace

bool attachesToPrevious(char32_t scalar) {
  const auto c = static_cast<UChar32>(scalar);
  if ((U_GET_GC_MASK(c) & U_GC_M_MASK) != 0) return true;
  const int32_t syllable = u_getIntPropertyValue(c, UCHAR_HANGUL_SYLLABLE_TYPE);
  return syllable == U_HST_VOWEL_JAMO || syllable == U_HST_TRAILING_JAMO;
}

ScalarForms& ScalarForms::shared(CaseFolding folding) {
  thread_local std::unique_ptr<ScalarForms> tables[2];
  std::unique_ptr<ScalarForms>& table = tables[folding == CaseFolding::full ? 1 : 0];
  if (table == nullptr) table.reset(new ScalarForms(folding));
  return *table;
}

const ScalarForms::Form& ScalarForms::of(char32_t scalar) {
  if (isOwnForm(scalar)) {
    passing_.scalar = passing_.scalars[0] = scalar;
    passing_.length = 1;
    return passing_;
  }
  Form& entry = entries_[scalar % entries_.size()];
  if (entry.scalar != scalar || entry.length == 0) entry = make(scalar);
  return entry;
}

ScalarForms::Form ScalarForms::make(char32_t scalar) const {
  Form form;
  form.scalar = scalar;
  if (scalar == kIllFormed) {
    form.scalars[0] = scalar;
    form.length = 1;
    return form;
  }
  const std::vector<char32_t> parts = decomposed({&scalar, 1});
  const std::vector<char32_t> whole = compared(parts, folding_);
  std::copy_n(whole.begin(), std::min(whole.size(), form.scalars.size()), form.scalars.begin());
  form.length = static_cast<std::uint8_t>(std::min(whole.size(), form.scalars.size()));
  form.attaches = attachesToPrevious(scalar);
  form.lead = {combiningClass(parts.front()), combiningClass(whole.front())};
  form.trail = {combiningClass(parts.back()), combiningClass(whole.back())};
  return form;
}

bool UnitReader::next() {
  begin_ = end_;
  if (begin_ == text_.size()) return false;
  const bool marksMayFollow = begin_ + 1 < text_.size() && !isASCIIAt(begin_ + 1);
  if (isASCIIAt(begin_) && !marksMayFollow) {
    scalars_[0] = folded(text_[begin_]);
    length_ = 1;
    ++end_;
    return true;
  }
  lookAhead();
  length_ = 0;
  appendAhead();
  if (end_ < text_.size() && !isASCIIAt(end_)) readMarks();
  return true;
}

void UnitReader::skipASCIIUntil(char32_t wanted) {
  std::size_t position = end_;
  if (position == text_.size() || !isASCIIAt(position)) return;
  if (wanted >= 0x80) {
    position += asciiPrefixLength(text_.substr(position));
  } else {
    while (position < text_.size() && isASCIIAt(position) && folded(text_[position]) != wanted) {
      ++position;
    }
  }
  // The last scalar may be followed by marks.
  if (position > end_) end_ = position - 1;
}

void UnitReader::appendASCII(std::string& out) {
  const std::size_t start = end_;
  skipASCIIUntil(0x80);
  out += text_.substr(start, end_ - start);
  if (forms_.folding() == CaseFolding::none) return;
  lowercaseASCII(out.data() + out.size() - (end_ - start), end_ - start);
}

char32_t UnitReader::folded(char ascii) const {
  return static_cast<char32_t>(forms_.folding() == CaseFolding::full ? lowercased(ascii) : ascii);
}

void UnitReader::lookAhead() {
  if (ahead_ == end_) return;
  const DecodedScalar scalar = decodeScalar(text_, end_);
  form_ = &forms_.of(scalar.wellFormed ? scalar.value : kIllFormed);
  ahead_ = end_;
  behindAhead_ = scalar.next;
}

void UnitReader::appendAhead() {
  if (length_ + form_->scalars.size() > scalars_.size()) scalars_.resize(2 * scalars_.size());
  for (std::size_t i = 0; i < form_->length; ++i) scalars_[length_++] = form_->scalars[i];
  end_ = behindAhead_;
}

void UnitReader::readMarks() {
  bool inOrder = true;
  ScalarForms::Form::CombiningClasses last = form_->trail;
  for (; end_ < text_.size() && !isASCIIAt(end_); last = form_->trail) {
    lookAhead();
    if (!form_->attaches) break;
    inOrder = inOrder && isInOrder(last, form_->lead);
    appendAhead();
  }
  if (!inOrder) readAgainInOrder();
}

void UnitReader::readAgainInOrder() {
  std::vector<char32_t> source;
  for (std::size_t position = begin_; position < end_;) {
    const DecodedScalar scalar = decodeScalar(text_, position);
    source.push_back(scalar.wellFormed ? scalar.value : kIllFormed);
    position = scalar.next;
  }
  const std::vector<char32_t> ordered = compared(decomposed(source), forms_.folding());
  length_ = ordered.size();  // the same number of scalars, reordered
  std::copy(ordered.begin(), ordered.end(), scalars_.begin());
}

void lowercaseASCII(char* bytes, std::size_t size) {
  std::uint64_t word = 0;
  for (; size >= sizeof word; bytes += sizeof word, size -= sizeof word) {
    std::memcpy(&word, bytes, sizeof word);
    word = lowercased(word);
    std::memcpy(bytes, &word, sizeof word);
  }
  std::transform(bytes, bytes + size, bytes, [](char c) { return lowercased(c); });
}

std::string comparisonForm(std::string_view text, CaseFolding folding) {
  std::string result;
  result.reserve(text.size() + text.size() / 8);
  UnitReader units(text, 0, ScalarForms::shared(folding));
  do {
    for (const char32_t scalar : units.scalars()) {
      appendScalar(result, scalar == kIllFormed ? char32_t{0xFFFD} : scalar);
    }
    units.appendASCII(result);
  } while (units.next());
  return result;
}

}  // namespace platform::text
