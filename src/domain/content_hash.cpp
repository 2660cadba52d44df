#include "domain/content_hash.h"

#include "platform/system/hashing.h"

namespace tavi {

std::string ContentHash::of(std::string_view text) {
  const platform::system::SHA256Digest digest = platform::system::sha256(text);
  return ofDigest(
      platform::system::hexadecimal({reinterpret_cast<const char*>(digest.data()), digest.size()}));
}

std::string ContentHash::ofDigest(std::string_view sha256) {
  constexpr std::size_t digits = 7;
  return std::string(sha256.substr(0, digits));
}

}  // namespace tavi
