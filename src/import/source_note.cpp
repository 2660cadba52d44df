#include "import/source_note.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

#include "domain/tag_parser.h"
#include "platform/markdown/outline.h"
#include "platform/text/utf8.h"
#include "vault/dates.h"
#include "vault/encodings.h"
#include "vault/files.h"
#include "vault/front_matter.h"
#include "vault/names.h"

namespace tavi::import {
namespace {

using vault::Field;
using vault::FileFault;
using vault::FrontMatter;
using Keys = std::span<const std::string_view>;

constexpr std::uint64_t longestNote = std::uint64_t{100} << 20;  // bytes

constexpr std::array<std::string_view, 3> tagKeys{"tags", "tag", "keywords"};
constexpr std::array<std::string_view, 2> aliasKeys{"aliases", "alias"};
constexpr std::array<std::string_view, 9> createdKeys{
    "created",       "date",         "created_at",   "created-at", "creation_date",
    "creation-date", "date created", "date_created", "ctime"};
constexpr std::array<std::string_view, 10> modifiedKeys{
    "modified",      "updated",       "updated_at",    "updated-at",    "lastmod",
    "last_modified", "last-modified", "date modified", "date_modified", "mtime"};

bool isOneOf(Keys keys, std::string_view key) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

/// The file's text in UTF-8, without a byte order mark. Throws FileFault.
std::string textOf(const vault::FoundFile& file, const std::string& encoding) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  std::string bytes = vault::contentsOf(file.path, longestNote);
  if (platform::text::isValidUTF8(bytes)) {
    if (bytes.starts_with(byteOrderMark)) bytes.erase(0, byteOrderMark.size());
    return bytes;
  }
  if (encoding.empty()) {
    const auto likely = vault::likelyEncoding(bytes);
    if (!likely) throw FileFault("it is neither UTF-8 nor text in another known encoding");
    throw FileFault(fmt::format(
        "it is not UTF-8 but most likely {0}; --encoding {0} converts such files", *likely));
  }
  auto converted = vault::toUTF8(bytes, encoding);
  if (!converted) throw FileFault(fmt::format("it is neither UTF-8 nor {}", encoding));
  return *std::move(converted);
}

// Files that tavi-export wrote

std::optional<Instant> exportedDate(const FrontMatter& found, std::string_view key) {
  const auto seconds = vault::readDate(found.value(key));
  return seconds ? std::optional(Instant{*seconds}) : std::nullopt;
}

ImportedNote exportedNote(const FrontMatter& found, std::string_view text) {
  if (found.value("tavi") != "1") throw FileFault("a newer tavi-export wrote it");
  if (!vault::isUUID(found.value("id"))) throw FileFault("its front matter has no valid id");
  if (found.value("locked") == "true")
    throw FileFault("the note is locked: its text was not exported");
  ImportedNote note{.id = found.value("id"),
                    .text = std::string(text.substr(found.end)),
                    .created = exportedDate(found, "created"),
                    .modified = exportedDate(found, "modified"),
                    .pins = found.values("pins")};
  const auto place = noteLocation(found.value("place"));
  if (!place) throw FileFault("its front matter names no known place");
  note.location = *place;
  for (std::string& name : found.values("attachments"))
    note.files.push_back({.filename = std::move(name), .bytes = {}});
  return note;
}

// All other files

/// Splits a text such as "a, b", "a b" or "#a #b"; returns the elements of a list as they are.
std::vector<std::string> tagTexts(const Field& field) {
  if (field.isList || field.values.empty()) return field.values;
  const std::string& text = field.values.front();
  const std::string_view separators = text.find(',') != std::string::npos ? "," : " \t";
  std::vector<std::string> pieces;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
    if (end > at) pieces.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return pieces;
}

void addTag(SourceNote& note, const std::string& text) {
  const std::string name = tagNameOf(text);
  if (name.empty()) {
    note.remarks.push_back(fmt::format("no tag can be named \"{}\"", vault::shown(text)));
  } else if (std::find(note.tags.begin(), note.tags.end(), name) == note.tags.end()) {
    note.tags.push_back(name);
  }
}

/// Copies a field into the note or the title. False if a note cannot store it.
bool takeField(const Field& field, SourceNote& note, std::string& title) {
  if (!field.isUnderstood) return false;
  if (isOneOf(tagKeys, field.key)) {
    for (const std::string& text : tagTexts(field)) addTag(note, text);
    return true;
  }
  if (isOneOf(aliasKeys, field.key)) {
    for (const std::string& alias : field.values) note.aliases.push_back(alias);
    return field.values.empty();
  }
  if (field.values.empty()) return true;
  if (field.isList) return false;
  if (field.key == "title") {
    const bool isOneLine = field.values.front().find('\n') == std::string::npos;
    if (isOneLine) title = field.values.front();
    return isOneLine;
  }
  const bool isCreation = isOneOf(createdKeys, field.key);
  if (!isCreation && !isOneOf(modifiedKeys, field.key)) return false;
  const auto date = vault::readDate(field.values.front());
  if (date) (isCreation ? note.created : note.modified) = Instant{*date};
  return date.has_value();
}

void takeFrontMatter(const FrontMatter& found, SourceNote& note, std::string& title) {
  bool isAllTaken = found.isValid;
  if (!found.isValid)
    note.remarks.emplace_back("its front matter is not valid YAML and stays as text");
  for (const Field& field : found.fields) isAllTaken = takeField(field, note, title) && isAllTaken;
  if (!isAllTaken) return;
  note.text.erase(0, std::min(note.text.find_first_not_of("\r\n", found.end), note.text.size()));
}

/// Inserts the heading "# title" before the body, that is after the front matter if there is any.
void addHeading(SourceNote& note, std::size_t bodyBegin, const std::string& title) {
  const std::size_t newline = note.text.find('\n');
  const bool isCRLF = newline != std::string::npos && newline > 0 && note.text[newline - 1] == '\r';
  const std::string lineBreak = isCRLF ? "\r\n" : "\n";
  const std::size_t body =
      std::min(note.text.find_first_not_of("\r\n", bodyBegin), note.text.size());
  std::string heading = (bodyBegin > 0 ? lineBreak : "") + "# " + title + lineBreak;
  if (body < note.text.size()) heading += lineBreak;
  note.text.replace(bodyBegin, body - bodyBegin, heading);
}

std::string titleOf(const std::string& text) {
  return zephyrdown::ZDKAST::fromMarkdown(text).textSummary().title;
}

/// Sets the title, and adds a heading if it is needed. `given`: the title in the front matter,
/// empty if there is none. `stem`: the file's name without its extension.
void giveTitle(SourceNote& note, const std::string& given, const std::string& stem) {
  const zephyrdown::Outline outline = zephyrdown::outlineOf(note.text);
  note.title = titleOf(note.text);
  if (given.empty() && outline.titleLevel == 1) return;
  const std::string& wanted = given.empty() ? stem : given;
  if (!note.title.empty() && vault::comparable(note.title) == vault::comparable(wanted)) return;
  addHeading(note, outline.bodyBegin, vault::shown(wanted));
  note.title = titleOf(note.text);
}

void giveDates(SourceNote& note, const vault::FileDates& file) {
  if (!note.modified) note.modified = Instant{file.modified};
  // Copying a file changes its birth date but may keep its modification date.
  if (!note.created)
    note.created = Instant{std::min(file.born.value_or(file.modified), file.modified)};
  if (*note.modified < *note.created) note.modified = note.created;
}

}  // namespace

std::string tagNameOf(const std::string& text) {
  const std::string name = TagParser::canonicalName(text);
  if (!name.empty()) return name;
  std::string plain = platform::text::replacingInvalidUTF8(text);
  const auto isMark = [](char c) {
    return (c >= 0 && c < ' ') ||
           std::string_view("*~[]<>|\\#`@:&;").find(c) != std::string_view::npos;
  };
  std::replace_if(plain.begin(), plain.end(), isMark, ' ');
  return TagParser::canonicalName(plain);
}

SourceNote readSourceNote(const vault::FoundFile& file, const std::string& encoding) {
  SourceNote note;
  note.text = textOf(file, encoding);
  const auto found = vault::readFrontMatter(note.text);
  if (found && found->find("tavi") != nullptr) {
    note.exported = exportedNote(*found, note.text);
    note.text.clear();
    note.title = titleOf(note.exported->text);
    return note;
  }
  std::string title;
  if (found) takeFrontMatter(*found, note, title);
  giveTitle(note, title, platform::text::replacingInvalidUTF8(file.path.stem().string()));
  giveDates(note, vault::datesOf(file.path));
  return note;
}

}  // namespace tavi::import
