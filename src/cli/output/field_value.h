#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "domain/instant.h"

namespace tavi {

using TextList = std::span<const std::string_view>;

/// The value of one cell; std::monostate is null. It owns nothing: texts are those of the record,
/// or of the FieldContext, and live until the next value is extracted with it.
using FieldValue = std::variant<std::monostate, std::string_view, std::int64_t, Instant, TextList>;

/// What extracting the cells of many rows needs to be cheap: room for one list, and the written
/// forms of the tags that were seen, since the same few come again and again.
class FieldContext {
 public:
  TextList list(const std::vector<std::string>& texts);
  /// Each tag in its written form; one that has none is left out.
  TextList writtenTags(const std::vector<std::string>& names);
  TextList displayedPins(const std::vector<std::string>& pins);

 private:
  using Forms = std::unordered_map<std::string, std::optional<std::string>>;

  std::vector<std::string_view> list_;
  Forms tags_;
  Forms pins_;
};

/// One field that a user may select of a record.
template <class Record>
struct FieldDescriptor {
  std::string_view name;
  FieldValue (*extract)(const Record& record, FieldContext& context);
  bool isDetail = false;  ///< of the metadata; no default field is one, see ListRequest::detailed
};

template <class Record>
using FieldTable = std::span<const FieldDescriptor<Record>>;

}  // namespace tavi
