#include "domain/content_hash.h"

#include "platform/system/hashing.h"

namespace tavi {

std::string ContentHash::of(std::string_view text) {
  const platform::system::SHA256Digest digest = platform::system::sha256(text);
  // Seven digits are the first three bytes and half of the fourth.
  std::string digits =
      platform::system::hexadecimal({reinterpret_cast<const char*>(digest.data()), 4});
  digits.pop_back();
  return digits;
}

}  // namespace tavi
