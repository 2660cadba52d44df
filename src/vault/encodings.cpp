#include "vault/encodings.h"

#include <unicode/ucnv.h>
#include <unicode/ucsdet.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace tavi::vault {
namespace {

struct Close {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
  void operator()(UCharsetDetector* detector) const { ucsdet_close(detector); }
};

std::unique_ptr<UConverter, Close> strictConverter(const std::string& name) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UConverter, Close> converter(ucnv_open(name.c_str(), &status));
  if (U_FAILURE(status)) return nullptr;
  ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
  return converter;
}

}  // namespace

bool isEncoding(const std::string& name) {
  return !name.empty() && strictConverter(name) != nullptr;
}

std::optional<std::string> toUTF8(std::string_view bytes, const std::string& encoding) {
  const auto converter = strictConverter(encoding);
  constexpr auto most = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max() / 4);
  if (!converter || bytes.size() > most) return std::nullopt;
  const auto size = static_cast<std::int32_t>(bytes.size());
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString text;
  const std::int32_t room = size * 2 + 1;  // ICU converts a byte to at most two UTF-16 units
  char16_t* units = text.getBuffer(room);
  if (units == nullptr) return std::nullopt;
  const std::int32_t length =
      ucnv_toUChars(converter.get(), units, room, bytes.data(), size, &status);
  text.releaseBuffer(U_SUCCESS(status) ? length : 0);
  if (U_FAILURE(status)) return std::nullopt;
  if (text.startsWith(u"\uFEFF", 1)) text.remove(0, 1);
  std::string result;
  return text.toUTF8String(result);
}

std::optional<std::string> likelyEncoding(std::string_view bytes) {
  constexpr std::size_t enough = 64 * 1024;  // bytes
  const bool isBinary = bytes.find('\0') != std::string_view::npos &&
                        !bytes.starts_with("\xFF\xFE") && !bytes.starts_with("\xFE\xFF");
  if (isBinary) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UCharsetDetector, Close> detector(ucsdet_open(&status));
  if (U_FAILURE(status)) return std::nullopt;
  ucsdet_setText(detector.get(), bytes.data(),
                 static_cast<std::int32_t>(std::min(bytes.size(), enough)), &status);
  const UCharsetMatch* match = ucsdet_detect(detector.get(), &status);
  if (U_FAILURE(status) || match == nullptr) return std::nullopt;
  const char* name = ucsdet_getName(match, &status);
  if (U_FAILURE(status) || name == nullptr || std::string_view(name) == "UTF-8")
    return std::nullopt;
  return name;
}

}  // namespace tavi::vault
