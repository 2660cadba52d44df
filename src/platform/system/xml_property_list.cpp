#include <expat.h>

#include <charconv>
#include <memory>
#include <string>

#include "platform/system/property_list_formats.h"
#include "platform/text/utf8.h"

// <plist><dict><key>name</key> value ... </dict></plist>: only elements at these three depths
// matter. Deeper elements are only counted.

namespace platform::system {
namespace {

constexpr int kListDepth = 1;
constexpr int kDictionaryDepth = 2;
constexpr int kEntryDepth = 3;
constexpr int kDeepest = 10'000;

/// Parses `text` as a number; std::monostate if it is not one.
template <class Number>
PropertyValue numberIn(std::string_view text) {
  text = platform::text::trimmingWhitespaceAndNewlines(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::monostate{};
  return number;
}

PropertyValue valueOf(std::string_view element, const std::string& text) {
  if (element == "true") return true;
  if (element == "false") return false;
  if (element == "string") return text;
  if (element == "integer") return numberIn<std::int64_t>(text);
  if (element == "real") return numberIn<double>(text);
  return std::monostate{};
}

/// Reads the list with expat.
class XMLReader {
 public:
  XMLReader() : parser_(XML_ParserCreate(nullptr), XML_ParserFree) {}

  std::optional<PropertyDictionary> read(std::string_view bytes) {
    if (parser_ == nullptr) return std::nullopt;
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), onStart, onEnd);
    XML_SetCharacterDataHandler(parser_.get(), onText);
    XML_SetEntityDeclHandler(parser_.get(), onEntity);
    const XML_Status status =
        XML_Parse(parser_.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
    if (status != XML_STATUS_OK || !complete_) return std::nullopt;
    return std::move(values_);
  }

 private:
  void refuse() {
    refused_ = true;
    XML_StopParser(parser_.get(), XML_FALSE);
  }

  void start(std::string_view element) {
    ++depth_;
    text_.clear();
    const bool fits = depth_ == kListDepth         ? element == "plist"
                      : depth_ == kDictionaryDepth ? element == "dict" && !complete_
                      : depth_ == kEntryDepth      ? (element == "key") == !key_.has_value()
                                                   : depth_ <= kDeepest;
    if (!fits) refuse();
  }

  void end(std::string_view element) {
    if (depth_ == kEntryDepth) endEntry(element);
    if (depth_ == kDictionaryDepth) {
      if (key_) refuse();
      complete_ = true;
    }
    --depth_;
    text_.clear();
  }

  void endEntry(std::string_view element) {
    if (element == "key") {
      key_ = std::move(text_);
    } else {
      values_.insert_or_assign(std::move(*key_), valueOf(element, text_));
      key_.reset();
    }
  }

  void text(std::string_view part) {
    if (depth_ == kEntryDepth) {
      text_ += part;
    } else if (depth_ < kEntryDepth &&
               !platform::text::trimmingWhitespaceAndNewlines(part).empty()) {
      refuse();
    }
  }

  /// The reader; null after `refuse`, since expat still reports the end of the element at which it
  /// was stopped.
  static XMLReader* reader(void* data) {
    auto* reader = static_cast<XMLReader*>(data);
    return reader->refused_ ? nullptr : reader;
  }
  static void XMLCALL onStart(void* data, const XML_Char* name, const XML_Char** /*attributes*/) {
    if (XMLReader* r = reader(data)) r->start(name);
  }
  static void XMLCALL onEnd(void* data, const XML_Char* name) {
    if (XMLReader* r = reader(data)) r->end(name);
  }
  static void XMLCALL onText(void* data, const XML_Char* part, int length) {
    if (XMLReader* r = reader(data)) r->text({part, static_cast<std::size_t>(length)});
  }
  /// Refuses entity declarations: property lists have none, and attacks use them to multiply text.
  static void XMLCALL onEntity(void* data, const XML_Char*, int, const XML_Char*, int,
                               const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
    if (XMLReader* r = reader(data)) r->refuse();
  }

  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
  PropertyDictionary values_;
  std::optional<std::string> key_;  // the key whose value comes next
  std::string text_;
  int depth_ = 0;
  bool complete_ = false;
  bool refused_ = false;
};

}  // namespace

std::optional<PropertyDictionary> parseXMLPropertyList(std::string_view bytes) {
  return XMLReader().read(bytes);
}

}  // namespace platform::system
