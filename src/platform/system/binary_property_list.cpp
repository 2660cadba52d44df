#include <bit>
#include <cstdint>
#include <string>

#include "platform/system/property_list_formats.h"
#include "platform/text/utf8.h"

// The format: a magic number, the objects, a table of their offsets, and a trailer of 32 bytes. All
// numbers are big-endian.
//
//   "bplist00" | object ... | offset ... | 6 bytes, offset size, reference size,
//                                        | object count, top object, table's offset (8 bytes each)
//
// An object starts with a marker byte: its kind in the upper four bits, its size in the lower. A
// dictionary of n pairs has n references to keys, then n references to values. A reference is an
// index into the offset table.

namespace platform::system {
namespace {

constexpr std::size_t kTrailerSize = 32;
constexpr std::size_t kMostText = std::size_t{64} << 20;  // bytes

enum Kind : unsigned {
  kSingleton = 0x0,
  kInteger = 0x1,
  kReal = 0x2,
  kASCIIText = 0x5,
  kUTF16Text = 0x6,
  kDictionary = 0xD,
};

/// The list is malformed. Thrown and caught in this file only.
struct Malformed {};

void require(bool condition) {
  if (!condition) throw Malformed{};
}

/// Reads the objects. All access goes through `slice`, which checks bounds.
class BinaryReader {
 public:
  explicit BinaryReader(std::string_view bytes) : bytes_(bytes) {
    require(bytes.size() >= kBinaryPropertyListMagic.size() + kTrailerSize);
    const std::size_t trailer = bytes.size() - kTrailerSize;
    offsetSize_ = integer(slice(trailer + 6, 1));
    referenceSize_ = integer(slice(trailer + 7, 1));
    objectCount_ = integer(slice(trailer + 8, 8));
    top_ = integer(slice(trailer + 16, 8));
    table_ = integer(slice(trailer + 24, 8));
    require(offsetSize_ >= 1 && offsetSize_ <= 8 && referenceSize_ >= 1 && referenceSize_ <= 8);
    require(table_ <= trailer && objectCount_ <= (trailer - table_) / offsetSize_);
  }

  PropertyDictionary topDictionary() {
    const Object top = object(top_);
    require(top.kind == kDictionary && top.count <= bytes_.size() / (2 * referenceSize_));
    PropertyDictionary result;
    for (std::size_t i = 0; i < top.count; ++i) {
      const Object key = object(reference(top, i));
      require(key.kind == kASCIIText || key.kind == kUTF16Text);
      result.insert_or_assign(text(key), value(object(reference(top, top.count + i))));
    }
    return result;
  }

 private:
  struct Object {
    unsigned kind;
    unsigned size;        // the lower four bits of the marker
    std::uint64_t count;  // pairs, bytes or UTF-16 units, for kinds that have a count
    std::size_t content;  // offset of the content
  };

  std::string_view slice(std::uint64_t offset, std::uint64_t length) const {
    require(offset <= bytes_.size() && length <= bytes_.size() - offset);
    return bytes_.substr(offset, length);
  }

  static std::uint64_t integer(std::string_view bytes) {
    std::uint64_t result = 0;
    for (const char byte : bytes) result = result << 8 | static_cast<unsigned char>(byte);
    return result;
  }

  std::uint64_t reference(const Object& dictionary, std::uint64_t index) const {
    return integer(slice(dictionary.content + index * referenceSize_, referenceSize_));
  }

  Object object(std::uint64_t index) const {
    require(index < objectCount_);
    const std::uint64_t offset = integer(slice(table_ + index * offsetSize_, offsetSize_));
    require(offset >= kBinaryPropertyListMagic.size() && offset < table_);
    const std::uint64_t marker = integer(slice(offset, 1));
    Object result{static_cast<unsigned>(marker >> 4), static_cast<unsigned>(marker & 0xF),
                  marker & 0xF, offset + 1};
    const bool isCounted = result.kind >= 0x4;
    if (isCounted && result.size == 0xF) {
      // The count does not fit into four bits, so an integer object with the count follows.
      const std::uint64_t countMarker = integer(slice(offset + 1, 1));
      require(countMarker >> 4 == kInteger && (countMarker & 0xF) <= 3);
      const std::uint64_t length = std::uint64_t{1} << (countMarker & 0xF);
      result.count = integer(slice(offset + 2, length));
      result.content = offset + 2 + length;
    }
    return result;
  }

  PropertyValue value(const Object& object) {
    switch (object.kind) {
      case kSingleton:
        if (object.size == 8 || object.size == 9) return object.size == 9;
        return std::monostate{};
      case kInteger:
        return number(object);
      case kReal:
        return real(object);
      case kASCIIText:
      case kUTF16Text:
        return text(object);
      default:
        return std::monostate{};
    }
  }

  PropertyValue number(const Object& object) const {
    require(object.size <= 4);
    if (object.size < 4) {  // integers of 8 bytes are signed, shorter ones are unsigned
      const std::uint64_t length = std::uint64_t{1} << object.size;
      return static_cast<std::int64_t>(integer(slice(object.content, length)));
    }
    const auto high = static_cast<std::int64_t>(integer(slice(object.content, 8)));
    const auto low = static_cast<std::int64_t>(integer(slice(object.content + 8, 8)));
    if (high != (low < 0 ? -1 : 0)) return std::monostate{};
    return low;
  }

  PropertyValue real(const Object& object) const {
    require(object.size == 2 || object.size == 3);
    if (object.size == 3) return std::bit_cast<double>(integer(slice(object.content, 8)));
    const auto bits = static_cast<std::uint32_t>(integer(slice(object.content, 4)));
    return static_cast<double>(std::bit_cast<float>(bits));
  }

  /// Bounds the total size of all texts, since a small file can refer to a long text many times.
  std::string text(const Object& object) {
    require(object.count <= bytes_.size());
    const std::uint64_t unitSize = object.kind == kUTF16Text ? 2 : 1;
    const std::string_view content = slice(object.content, unitSize * object.count);
    textSize_ += content.size();
    require(textSize_ <= kMostText);
    return unitSize == 1 ? platform::text::replacingInvalidUTF8(content) : fromUTF16(content);
  }

  static std::string fromUTF16(std::string_view content) {
    const auto isHigh = [](char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; };
    const auto isLow = [](char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; };
    const auto unitAt = [&](std::size_t i) {
      return static_cast<char32_t>(integer(content.substr(i, 2)));
    };
    std::string result;
    for (std::size_t i = 0; i < content.size(); i += 2) {
      char32_t scalar = unitAt(i);
      if (isHigh(scalar) && i + 2 < content.size() && isLow(unitAt(i + 2))) {
        i += 2;
        scalar = 0x10000 + ((scalar - 0xD800) << 10) + (unitAt(i) - 0xDC00);
      } else if (isHigh(scalar) || isLow(scalar)) {
        scalar = 0xFFFD;
      }
      platform::text::appendScalar(result, scalar);
    }
    return result;
  }

  std::string_view bytes_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t top_ = 0;
  std::uint64_t table_ = 0;
  std::uint64_t textSize_ = 0;
};

}  // namespace

std::optional<PropertyDictionary> parseBinaryPropertyList(std::string_view bytes) {
  try {
    return BinaryReader(bytes).topDictionary();
  } catch (const Malformed&) {
    return std::nullopt;
  }
}

}  // namespace platform::system
