#include "vault/names.h"

#include <uuid/uuid.h>

#include <algorithm>
#include <array>

#include "platform/text/characters.h"
#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace tavi::vault {
namespace {

namespace text = platform::text;

constexpr std::size_t longestName = 120;  // bytes; leaves room for a number and an extension

bool isControl(char32_t c) {
  const bool turnsDirection = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029 || turnsDirection;
}

template <class Visit>
void forEachScalar(std::string_view from, Visit visit) {
  for (std::size_t at = 0; at < from.size();) {
    const text::DecodedScalar scalar = text::decodeScalar(from, at);
    visit(scalar.value);
    at = scalar.next;
  }
}

/// Whether it is the name of a DOS device (CON, COM1, ...), which is reserved with any extension on
/// systems that users share folders with.
bool isReserved(const std::string& name) {
  const std::string folded = text::foldedForSearch(name.substr(0, name.find('.')));
  constexpr std::array reserved{"con", "prn", "aux", "nul"};
  if (std::find(reserved.begin(), reserved.end(), folded) != reserved.end()) return true;
  const bool isPort = folded.starts_with("com") || folded.starts_with("lpt");
  return isPort && folded.size() == 4 && folded[3] >= '0' && folded[3] <= '9';
}

std::string cut(std::string name, std::size_t length) {
  if (name.size() <= length) return name;
  std::size_t end = 0;
  while (true) {
    const std::size_t next = text::stepForwardCharacters(name, end, 1);
    if (next > length || next == end) break;
    end = next;
  }
  name.resize(end);
  return name;
}

}  // namespace

std::string shown(std::string_view name) {
  std::string result;
  forEachScalar(name, [&](char32_t c) { text::appendScalar(result, isControl(c) ? 0xFFFD : c); });
  return result;
}

std::string comparable(std::string_view name) {
  std::string result;
  forEachScalar(text::foldedForSearch(name), [&](char32_t c) {
    if (text::isAlphanumeric(c)) text::appendScalar(result, c);
  });
  return result;
}

std::string fileNameForTitle(std::string_view title) {
  std::string name;
  forEachScalar(text::canonicallyComposed(text::replacingInvalidUTF8(title)), [&](char32_t c) {
    if (c < 0x80 &&
        std::string_view("/\\:|").find(static_cast<char>(c)) != std::string_view::npos) {
      name += '-';
    } else if (c < 0x80 &&
               std::string_view("*?\"<>").find(static_cast<char>(c)) != std::string_view::npos) {
      return;
    } else if (isControl(c) || text::isWhitespace(c)) {
      if (!name.empty() && name.back() != ' ') name += ' ';
    } else {
      text::appendScalar(name, c);
    }
  });
  const auto trim = [&] {
    name.erase(0, name.find_first_not_of(". "));  // a leading dot would hide the file
    name.erase(name.find_last_not_of(". ") + 1);
  };
  trim();
  name = cut(std::move(name), longestName);
  trim();
  if (name.empty()) return "Untitled";
  return isReserved(name) ? name + "_" : name;
}

std::string uuidOf(std::string_view from) {
  // The namespace of these UUIDs, itself a random UUID.
  uuid_t space;
  uuid_parse("5f0d6f3e-8a0c-4f0b-9c55-2f6b7b1f8c11", space);
  uuid_t made;
  uuid_generate_sha1(made, space, from.data(), from.size());
  std::string result(36, '\0');
  std::array<char, 37> written{};
  uuid_unparse_upper(made, written.data());
  result.assign(written.data(), 36);
  return result;
}

bool isUUID(std::string_view candidate) {
  uuid_t parsed;
  return candidate.size() == 36 && uuid_parse(std::string(candidate).c_str(), parsed) == 0;
}

}  // namespace tavi::vault
