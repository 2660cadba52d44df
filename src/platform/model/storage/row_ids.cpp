#include "platform/model/storage/row_ids.h"

#include <fmt/format.h>

namespace tavimodel {

std::string jsonArray(const std::vector<std::int64_t>& ids) {
  fmt::memory_buffer buffer;
  buffer.push_back('[');
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (i > 0) buffer.push_back(',');
    const fmt::format_int digits(ids[i]);
    buffer.append(digits.data(), digits.data() + digits.size());
  }
  buffer.push_back(']');
  return fmt::to_string(buffer);
}

}  // namespace tavimodel
