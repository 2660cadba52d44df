#include "platform/text/ordering.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace platform::text {
namespace {

/// The locale for sorting, by the rules of setlocale(3): the first of the three variables that is
/// set and not empty. Removes the parts that ICU does not know: "de_DE.UTF-8@euro" becomes "de_DE".
icu::Locale collationLocale() {
  for (const char* name : {"LC_ALL", "LC_COLLATE", "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    std::string_view locale = value;
    locale = locale.substr(0, locale.find_first_of(".@"));
    if (locale == "C" || locale == "POSIX") break;
    return icu::Locale::createFromName(std::string(locale).c_str());
  }
  return icu::Locale::getRoot();
}

/// Accents count, case is ignored.
std::unique_ptr<icu::Collator> openCollator() {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(collationLocale(), status));
  if (U_FAILURE(status) || collator == nullptr) return nullptr;
  collator->setStrength(icu::Collator::SECONDARY);
  collator->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
  return collator;
}

icu::StringPiece piece(std::string_view text) {
  return {text.data(), static_cast<int32_t>(text.size())};
}

}  // namespace

std::strong_ordering compareByCodePoints(std::string_view a, std::string_view b) {
  const auto difference = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  const auto isDecided = [](std::string_view from) { return isASCII(from.substr(0, 2)); };
  const auto begin = static_cast<std::size_t>(difference.first - a.begin());
  // An ASCII character composes with none before it, and only with marks behind it.
  if (isDecided(a.substr(begin)) && isDecided(b.substr(begin))) return a <=> b;
  return canonicallyComposed(a) <=> canonicallyComposed(b);
}

struct LocalizedCaseInsensitiveCollator::Impl {
  const icu::Collator* opened() {
    if (!tried) collator = openCollator();
    tried = true;
    return collator.get();
  }

  std::unique_ptr<icu::Collator> collator;  // null if ICU's data is missing
  bool tried = false;
};

LocalizedCaseInsensitiveCollator::LocalizedCaseInsensitiveCollator()
    : impl_(std::make_unique<Impl>()) {}
LocalizedCaseInsensitiveCollator::~LocalizedCaseInsensitiveCollator() = default;
LocalizedCaseInsensitiveCollator::LocalizedCaseInsensitiveCollator(
    LocalizedCaseInsensitiveCollator&&) noexcept = default;
LocalizedCaseInsensitiveCollator& LocalizedCaseInsensitiveCollator::operator=(
    LocalizedCaseInsensitiveCollator&&) noexcept = default;

int LocalizedCaseInsensitiveCollator::compare(std::string_view a, std::string_view b) const {
  UErrorCode status = U_ZERO_ERROR;
  if (const icu::Collator* collator = impl_->opened()) {
    return collator->compareUTF8(piece(a), piece(b), status);
  }
  return foldedForSearch(a).compare(foldedForSearch(b));
}

std::string LocalizedCaseInsensitiveCollator::sortKey(std::string_view text) const {
  const icu::Collator* collator = impl_->opened();
  if (collator == nullptr) return foldedForSearch(text);
  const auto wide = icu::UnicodeString::fromUTF8(piece(text));
  std::string key(text.size() * 2 + 16, '\0');
  for (;;) {
    const int32_t length = collator->getSortKey(wide, reinterpret_cast<std::uint8_t*>(key.data()),
                                                static_cast<int32_t>(key.size()));
    const bool fits = static_cast<std::size_t>(length) <= key.size();
    key.resize(static_cast<std::size_t>(length));
    if (fits) break;
  }
  if (!key.empty()) key.pop_back();  // the terminating zero
  return key;
}

}  // namespace platform::text
