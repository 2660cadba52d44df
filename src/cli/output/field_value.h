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

/// A cell with several texts, such as tags.
using TextList = std::span<const std::string_view>;

/// The value of one cell; std::monostate is null. It does not own its texts: they belong to the
/// record or to the FieldContext, and are valid until the context is used again.
using FieldValue = std::variant<std::monostate, std::string_view, std::int64_t, Instant, TextList>;

/// Memory that is reused while extracting the cells of many rows: a buffer for one list, and a
/// cache of the hashtags, since the same few tags occur in most rows. Each call invalidates the
/// previous list.
class FieldContext {
 public:
  TextList list(const std::vector<std::string>& texts);
  /// The tags as hashtags, without those that no hashtag can express.
  TextList writtenTags(const std::vector<std::string>& names);
  TextList displayedPins(const std::vector<std::string>& pins);

 private:
  using Forms = std::unordered_map<std::string, std::optional<std::string>>;

  std::vector<std::string_view> list_;
  Forms tags_;
  Forms pins_;
};

/// A field of a record that the user can select.
template <class Record>
struct FieldDescriptor {
  std::string_view name;
  FieldValue (*extract)(const Record& record, FieldContext& context);
  bool isDetail = false;  ///< needs ListRequest::detailed; never true for a default field
};

/// All fields of a kind of record, in the order of "all".
template <class Record>
using FieldTable = std::span<const FieldDescriptor<Record>>;

}  // namespace tavi
