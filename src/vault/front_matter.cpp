#include "vault/front_matter.h"

#include <yaml.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace tavi::vault {
namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::size_t longest = std::size_t{4} << 20;  // bytes; longer text is not front matter

/// Owns an event of libyaml.
class Event {
 public:
  Event() = default;
  ~Event() { yaml_event_delete(&event_); }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  yaml_event_t* get() { return &event_; }
  yaml_event_type_t type() const { return event_.type; }
  std::string text() const {
    const auto& scalar = event_.data.scalar;
    return {reinterpret_cast<const char*>(scalar.value), scalar.length};
  }
  bool isNull() const {
    if (event_.data.scalar.style != YAML_PLAIN_SCALAR_STYLE) return false;
    const std::string value = text();
    return value.empty() || value == "~" || value == "null" || value == "Null" || value == "NULL";
  }

 private:
  yaml_event_t event_{};
};

/// Reads fields from libyaml's events. YAML aliases are not expanded, so the result cannot become
/// larger than the input.
class FieldReader {
 public:
  explicit FieldReader(std::string_view yaml) {
    if (yaml_parser_initialize(&parser_) == 0) throw std::bad_alloc();
    yaml_parser_set_encoding(&parser_, YAML_UTF8_ENCODING);
    yaml_parser_set_input_string(&parser_, reinterpret_cast<const unsigned char*>(yaml.data()),
                                 yaml.size());
  }
  ~FieldReader() { yaml_parser_delete(&parser_); }
  FieldReader(const FieldReader&) = delete;
  FieldReader& operator=(const FieldReader&) = delete;

  /// False if the text is not YAML, or not a mapping with scalar keys.
  bool read(std::vector<Field>& fields) {
    if (!expect(YAML_STREAM_START_EVENT)) return false;
    Event first;
    if (!next(first)) return false;
    if (first.type() == YAML_STREAM_END_EVENT) return true;
    if (first.type() != YAML_DOCUMENT_START_EVENT || !expect(YAML_MAPPING_START_EVENT))
      return false;
    while (true) {
      Event key;
      if (!next(key)) return false;
      if (key.type() == YAML_MAPPING_END_EVENT) break;
      if (key.type() != YAML_SCALAR_EVENT) return false;
      Field field{.key = lowered(key.text())};
      if (!readValue(field)) return false;
      fields.push_back(std::move(field));
    }
    return expect(YAML_DOCUMENT_END_EVENT) && expect(YAML_STREAM_END_EVENT);
  }

 private:
  static std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
  }

  bool next(Event& event) { return yaml_parser_parse(&parser_, event.get()) != 0; }

  bool expect(yaml_event_type_t type) {
    Event event;
    return next(event) && event.type() == type;
  }

  bool readValue(Field& field) {
    Event event;
    if (!next(event)) return false;
    if (event.type() == YAML_SCALAR_EVENT) {
      if (!event.isNull()) field.values.push_back(event.text());
      return true;
    }
    if (event.type() == YAML_SEQUENCE_START_EVENT) return readList(field);
    field.isUnderstood = false;
    return event.type() != YAML_MAPPING_START_EVENT || skip();
  }

  bool readList(Field& field) {
    field.isList = true;
    while (true) {
      Event event;
      if (!next(event)) return false;
      if (event.type() == YAML_SEQUENCE_END_EVENT) return true;
      if (event.type() == YAML_SCALAR_EVENT) {
        if (!event.isNull()) field.values.push_back(event.text());
        continue;
      }
      field.isUnderstood = false;
      const bool opens =
          event.type() == YAML_SEQUENCE_START_EVENT || event.type() == YAML_MAPPING_START_EVENT;
      if (opens && !skip()) return false;
    }
  }

  /// Skips to the end of the list or mapping that has just started.
  bool skip() {
    for (int depth = 1; depth > 0;) {
      Event event;
      if (!next(event)) return false;
      if (event.type() == YAML_SEQUENCE_START_EVENT || event.type() == YAML_MAPPING_START_EVENT)
        ++depth;
      if (event.type() == YAML_SEQUENCE_END_EVENT || event.type() == YAML_MAPPING_END_EVENT)
        --depth;
    }
    return true;
  }

  yaml_parser_t parser_{};
};

/// The line that starts at `begin`, without its line break and trailing blanks. Sets `end` to the
/// start of the next line.
std::string_view lineAt(std::string_view text, std::size_t begin, std::size_t& end) {
  const std::size_t newline = text.find('\n', begin);
  end = newline == npos ? text.size() : newline + 1;
  std::string_view line = text.substr(begin, (newline == npos ? end : newline) - begin);
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
    line.remove_suffix(1);
  return line;
}

/// Writes YAML into a string.
class Emitter {
 public:
  Emitter() {
    if (yaml_emitter_initialize(&emitter_) == 0) throw std::bad_alloc();
    yaml_emitter_set_output(&emitter_, &append, &text_);
    yaml_emitter_set_unicode(&emitter_, 1);
    yaml_emitter_set_width(&emitter_, -1);
    yaml_emitter_set_break(&emitter_, YAML_LN_BREAK);
  }
  ~Emitter() { yaml_emitter_delete(&emitter_); }
  Emitter(const Emitter&) = delete;
  Emitter& operator=(const Emitter&) = delete;

  template <class Initialize, class... Arguments>
  void emit(Initialize initialize, Arguments... arguments) {
    yaml_event_t event;
    if (initialize(&event, arguments...) == 0 || yaml_emitter_emit(&emitter_, &event) == 0)
      throw std::runtime_error("YAML cannot be written");
  }

  /// `style`: double-quoted if a parser could take the text for a number, a date or a tag.
  void scalar(const std::string& text, yaml_scalar_style_t style) {
    emit(&yaml_scalar_event_initialize, nullptr, nullptr,
         reinterpret_cast<const yaml_char_t*>(text.data()), static_cast<int>(text.size()), 1, 1,
         style);
  }

  const std::string& text() const { return text_; }

 private:
  static int append(void* to, unsigned char* bytes, std::size_t size) {
    static_cast<std::string*>(to)->append(reinterpret_cast<const char*>(bytes), size);
    return 1;
  }

  yaml_emitter_t emitter_{};
  std::string text_;
};

void writeFields(Emitter& out, const std::vector<Field>& fields) {
  out.emit(&yaml_stream_start_event_initialize, YAML_UTF8_ENCODING);
  out.emit(&yaml_document_start_event_initialize, nullptr, nullptr, nullptr, 1);
  out.emit(&yaml_mapping_start_event_initialize, nullptr, nullptr, 1, YAML_BLOCK_MAPPING_STYLE);
  for (const Field& field : fields) {
    out.scalar(field.key, YAML_PLAIN_SCALAR_STYLE);
    if (!field.isList) {
      out.scalar(field.values.empty() ? "" : field.values.front(), YAML_PLAIN_SCALAR_STYLE);
      continue;
    }
    out.emit(&yaml_sequence_start_event_initialize, nullptr, nullptr, 1, YAML_FLOW_SEQUENCE_STYLE);
    for (const std::string& value : field.values)
      out.scalar(value, YAML_DOUBLE_QUOTED_SCALAR_STYLE);
    out.emit(&yaml_sequence_end_event_initialize);
  }
  out.emit(&yaml_mapping_end_event_initialize);
  out.emit(&yaml_document_end_event_initialize, 1);
  out.emit(&yaml_stream_end_event_initialize);
}

}  // namespace

const Field* FrontMatter::find(std::string_view key) const {
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [&](const Field& field) { return field.key == key; });
  return found == fields.end() ? nullptr : &*found;
}

std::string FrontMatter::value(std::string_view key) const {
  const Field* field = find(key);
  return field != nullptr && !field->values.empty() ? field->values.front() : std::string();
}

std::vector<std::string> FrontMatter::values(std::string_view key) const {
  const Field* field = find(key);
  return field != nullptr ? field->values : std::vector<std::string>();
}

std::optional<FrontMatter> readFrontMatter(std::string_view text) {
  std::size_t at = 0;
  if (lineAt(text, 0, at) != "---" || at == text.size()) return std::nullopt;
  const std::size_t begin = at;
  std::size_t end = at;
  if (lineAt(text, begin, end).empty()) return std::nullopt;  // a thematic break and a blank line
  for (; at < text.size() && at < longest; at = end) {
    const std::string_view line = lineAt(text, at, end);
    if (line != "---" && line != "...") continue;
    FrontMatter found{.end = end};
    found.isValid = FieldReader(text.substr(begin, at - begin)).read(found.fields);
    if (!found.isValid) found.fields.clear();
    return found;
  }
  return std::nullopt;
}

std::string writeFrontMatter(const std::vector<Field>& fields) {
  Emitter out;
  writeFields(out, fields);
  return "---\n" + out.text() + "---\n";
}

}  // namespace tavi::vault
