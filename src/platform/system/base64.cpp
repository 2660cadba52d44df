#include "platform/system/base64.h"

#include <nettle/base64.h>

#include <cstdint>

namespace platform::system {

std::string base64Encoded(std::string_view bytes) {
  std::string text(BASE64_ENCODE_RAW_LENGTH(bytes.size()), '\0');
  base64_encode_raw(text.data(), bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  return text;
}

std::optional<std::string> base64Decoded(std::string_view text) {
  // nettle ignores white space and accepts data after the padding. Checking the length and encoding
  // the result again finds both.
  if (text.size() % 4 != 0) return std::nullopt;
  base64_decode_ctx context;
  base64_decode_init(&context);
  std::string bytes(BASE64_DECODE_LENGTH(text.size()), '\0');
  std::size_t length = bytes.size();
  if (!base64_decode_update(&context, &length, reinterpret_cast<std::uint8_t*>(bytes.data()),
                            text.size(), text.data()) ||
      !base64_decode_final(&context)) {
    return std::nullopt;
  }
  bytes.resize(length);
  if (base64Encoded(bytes) != text) return std::nullopt;
  return bytes;
}

}  // namespace platform::system
