#include "platform/system/hashing.h"

#include <nettle/base16.h>
#include <nettle/sha2.h>
#include <uuid/uuid.h>

#include <utility>

namespace platform::system {

SHA256Digest sha256(std::string_view bytes) {
  return sha256([&] { return std::exchange(bytes, {}); });
}

SHA256Digest sha256(const std::function<std::string_view()>& next) {
  static_assert(SHA256Digest{}.size() == SHA256_DIGEST_SIZE);
  sha256_ctx context;
  sha256_init(&context);
  for (std::string_view bytes = next(); !bytes.empty(); bytes = next())
    sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  SHA256Digest digest;
  sha256_digest(&context, digest.size(), digest.data());
  return digest;
}

std::string hexadecimal(std::string_view bytes) {
  std::string text(BASE16_ENCODE_LENGTH(bytes.size()), '\0');
  base16_encode_update(text.data(), bytes.size(),
                       reinterpret_cast<const std::uint8_t*>(bytes.data()));
  return text;
}

std::string newUUID() {
  uuid_t uuid;
  uuid_generate_random(uuid);
  char text[UUID_STR_LEN];
  uuid_unparse_upper(uuid, text);
  return text;
}

}  // namespace platform::system
