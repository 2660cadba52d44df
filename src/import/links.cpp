#include "import/links.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "platform/markdown/file_names.h"
#include "platform/markdown/operations.h"
#include "platform/markdown/outline.h"
#include "platform/system/file_types.h"
#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace tavi::import {
namespace {

namespace fs = std::filesystem;
using platform::text::ByteRange;
using platform::text::equalIgnoringCase;
using vault::FoundFile;
using zephyrdown::LinkMention;
using zephyrdown::ZDKAST;

constexpr std::size_t npos = std::string_view::npos;

std::string_view part(std::string_view text, ByteRange range) {
  return text.substr(range.begin, range.end - range.begin);
}

/// "photo.jpg", "photo 2.jpg"
std::string numbered(const std::string& name, int number) {
  const fs::path path(name);
  return path.stem().string() + " " + std::to_string(number) + path.extension().string();
}

/// The path, relative to the folder, that a link destination means. Absent if the destination leads
/// out of the folder or is not a path.
std::optional<std::string> pathOf(std::string_view destination, const fs::path& directory) {
  if (destination.empty()) return std::nullopt;
  fs::path path = destination.front() == '/' ? fs::path() : directory;
  for (std::size_t at = 0; at <= destination.size();) {
    const std::size_t end = std::min(destination.find('/', at), destination.size());
    const std::string_view piece = destination.substr(at, end - at);
    at = end + 1;
    if (piece.empty() || piece == ".") continue;
    if (piece == "..") {
      if (path.empty()) return std::nullopt;
      path = path.parent_path();
      continue;
    }
    const std::string name = zephyrdown::fileNameOfDestination(piece);
    if (name.empty()) return std::nullopt;
    path /= name;
  }
  return path.string();
}

/// A title escaped as the target of a wiki link; absent if a wiki link cannot express it.
std::optional<std::string> wikiTarget(const std::string& title) {
  if (title.empty() || title.find_first_of("[]|\n\r") != npos) return std::nullopt;
  std::string target;
  for (const char c : title) {
    if (c == '/' || c == '\\') target += '\\';
    target += c;
  }
  return target;
}

/// The parts between the brackets of a wiki link: "target#heading|alias".
struct WikiParts {
  std::string target, heading, alias;
  bool isBarEscaped = false;  ///< "\|", as tables require

  explicit WikiParts(std::string_view inside) {
    const std::size_t bar = std::min(inside.find('|'), inside.size());
    std::string_view before = inside.substr(0, bar);
    if (bar < inside.size()) alias = platform::text::trimmingBlanks(inside.substr(bar + 1));
    isBarEscaped = bar < inside.size() && before.ends_with('\\');
    if (isBarEscaped) before.remove_suffix(1);
    const std::size_t hash = std::min(before.find('#'), before.size());
    if (hash < before.size()) heading = before.substr(hash + 1);
    target = platform::text::trimmingBlanks(before.substr(0, hash));
  }
};

/// The first <img> tag in a fragment of HTML.
struct ImageTag {
  std::string_view text;
  std::optional<ByteRange> source;  ///< of the value of `src` in `text`; absent if there is none
  std::string label;                ///< the value of `alt`
  bool isWhole = false;             ///< whether the tag is all of `text`

  explicit ImageTag(std::string_view html) : text(html) {
    const std::string lower = lowered(html);
    const std::size_t begin = lower.find("<img");
    const std::size_t end = begin == npos ? npos : lower.find('>', begin);
    if (end == npos) return;
    isWhole = begin == 0 && end + 1 == html.size();
    source = valueOf(lower, "src", {begin, end});
    if (const auto alt = valueOf(lower, "alt", {begin, end})) label = part(html, *alt);
  }

 private:
  static std::string lowered(std::string_view html) {
    std::string lower(html);
    for (char& c : lower)
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
  }

  /// The range of the quoted value of an attribute.
  static std::optional<ByteRange> valueOf(const std::string& lower, const std::string& name,
                                          ByteRange tag) {
    for (const char* before : {" ", "\t", "\n"}) {
      const std::size_t at = lower.find(before + name + "=", tag.begin);
      if (at == npos || at >= tag.end) continue;
      const std::size_t quote = at + name.size() + 2;
      if (lower[quote] != '"' && lower[quote] != '\'') continue;
      const std::size_t end = lower.find(lower[quote], quote + 1);
      if (end < tag.end) return ByteRange{quote + 1, end};
    }
    return std::nullopt;
  }
};

/// Replaces the "!" of each "![[" with another character, since Markdown parses "![" as the start
/// of an image.
std::string withoutEmbeds(std::string text) {
  for (std::size_t at = 0; (at = text.find("![[", at)) != npos; at += 3) text[at] = ',';
  return text;
}

/// Rewrites the links of one text. See relinked().
class Relinker {
 public:
  Relinker(const std::string& text, const FoundFile& from, const VaultIndex& index,
           const std::set<std::string>& unusable)
      : text_(text),
        directory_(fs::path(from.relative).parent_path()),
        index_(index),
        unusable_(unusable) {}

  RelinkedText run() {
    const zephyrdown::Outline outline = zephyrdown::outlineOf(withoutEmbeds(text_));
    tables_ = outline.tables;
    auto html = outline.html.begin();
    for (const LinkMention& link : outline.links) {
      for (; html != outline.html.end() && html->range.begin < link.range.begin; ++html)
        takeHTML(*html);
      if (link.range.begin < passed_) continue;  // inside a link that was rewritten
      if (link.kind == LinkMention::Kind::wikiLink) {
        takeWikiLink(link);
      } else {
        takeLink(link);
      }
    }
    for (; html != outline.html.end(); ++html) takeHTML(*html);
    result_.text = zephyrdown::withOperations(text_, std::move(operations_));
    return std::move(result_);
  }

 private:
  void replace(ByteRange range, std::string by) {
    operations_.push_back({range, std::move(by)});
    passed_ = range.end;
  }

  bool isUsable(const FoundFile* file) const {
    return file != nullptr && !unusable_.contains(file->relative);
  }

  /// The name of the file as an attachment, which becomes one with the first call.
  std::string attached(const FoundFile& file) {
    std::string& name = names_[&file];
    if (!name.empty()) return name;
    const std::string wanted = platform::text::replacingInvalidUTF8(file.path.filename().string());
    name = wanted;
    for (int number = 2; !taken_.insert(platform::text::foldedForSearch(name)).second; ++number)
      name = numbered(wanted, number);
    result_.files.push_back({name, &file});
    return name;
  }

  // [label](destination), ![label](destination), [label][reference]

  void takeLink(const LinkMention& link) {
    const std::string_view whole = link.destination;
    const std::size_t hash = std::min(whole.find('#'), whole.size());
    const auto path = pathOf(whole.substr(0, hash), directory_);
    if (!path || path->empty()) return;
    const FoundFile* file = index_.file(*path);
    if (isUsable(file)) return linkFile(link, *file, std::string(whole.substr(hash)));
    if (const std::string* title = index_.titleAt(*path)) return linkNote(link, *title);
    if (fs::path(*path).has_extension()) result_.missing.emplace_back(whole);
  }

  void linkFile(const LinkMention& link, const FoundFile& file, const std::string& fragment) {
    const std::string name = attached(file);
    if (zephyrdown::fileNameOfDestination(link.destination) == name) return;  // needs no change
    const std::string destination = zephyrdown::destinationForFileName(name) + fragment;
    if (link.destinationRange) {
      operations_.push_back({*link.destinationRange, destination});
      return;  // the label may contain further links
    }
    const std::string label(part(text_, link.label));
    if (label.find_first_of("[]") != npos) return;
    const char* mark = link.kind == LinkMention::Kind::image ? "![" : "[";
    replace(link.range, mark + label + "](" + destination + ")");
  }

  void linkNote(const LinkMention& link, const std::string& title) {
    const auto target = wikiTarget(title);
    const std::string label(part(text_, link.label));
    const bool canBeAlias = !label.empty() && label.find_first_of("[]|\n\r") == npos;
    if (!target || !canBeAlias || link.kind == LinkMention::Kind::image) return;
    if (equalIgnoringCase(label, title)) return replace(link.range, "[[" + *target + "]]");
    if (!isInTable(link.range)) replace(link.range, "[[" + *target + "|" + label + "]]");
  }

  /// Whether a "|" written there would separate two table cells.
  bool isInTable(ByteRange range) const {
    return std::any_of(tables_.begin(), tables_.end(), [&](const ByteRange& table) {
      return table.begin < range.end && range.begin < table.end;
    });
  }

  // <img src="destination" alt="label">, which becomes a Markdown image if it is inline HTML

  void takeHTML(const zephyrdown::HTMLMention& html) {
    if (html.range.begin < passed_) return;
    const ImageTag tag(part(text_, html.range));
    if (!tag.source) return;
    const std::string_view source = part(tag.text, *tag.source);
    const auto path = pathOf(source, directory_);
    const FoundFile* file = path ? index_.file(*path) : nullptr;
    if (!isUsable(file)) return;
    const std::string name = attached(*file);
    if (!html.isBlock && tag.isWhole)
      return replace(html.range, ZDKAST::markdownImage(tag.label, name, ""));
    const std::size_t begin = html.range.begin + tag.source->begin;
    operations_.push_back(
        {{begin, begin + source.size()}, zephyrdown::destinationForFileName(name)});
  }

  // [[target#heading|alias]], ![[target]]

  void takeWikiLink(const LinkMention& link) {
    const WikiParts parts(part(text_, link.label));
    if (parts.target.empty()) return;
    const bool isEmbedded = link.range.begin > passed_ && text_[link.range.begin - 1] == '!';
    const ByteRange range{link.range.begin - (isEmbedded ? 1 : 0), link.range.end};
    if (const FoundFile* file = fileOf(parts.target); isUsable(file)) {
      replace(range, linkTo(*file, parts.alias, isEmbedded));
    } else if (const std::string* title = titleOf(parts.target)) {
      renameTarget(range, parts, *title, isEmbedded);
    }
  }

  /// The path, relative to the folder, of a target that is relative to the note.
  std::string beside(const std::string& target) const {
    return (directory_ / target).lexically_normal().string();
  }

  const FoundFile* fileOf(const std::string& target) const {
    const FoundFile* file = index_.file(beside(target));
    return file != nullptr ? file : index_.fileNamed(target);
  }

  const std::string* titleOf(const std::string& target) const {
    const std::string* title = index_.titleNamed(beside(target));
    return title != nullptr ? title : index_.titleNamed(target);
  }

  std::string linkTo(const FoundFile& file, const std::string& alias, bool isEmbedded) {
    const std::string name = attached(file);
    const auto type = platform::system::fileTypeOf(name);
    if (isEmbedded && type.conformsToImage && !type.conformsToSVG)
      return ZDKAST::markdownImage("", name, "");
    const bool isSize = alias.find_first_not_of("0123456789x") == npos;  // "300x200" or empty
    return ZDKAST::markdownFile(isSize ? name : alias, name, isEmbedded && type.conformsToPDF);
  }

  void renameTarget(ByteRange range, const WikiParts& parts, const std::string& title,
                    bool isEmbedded) {
    const bool isSame = equalIgnoringCase(title, parts.target);
    if (isSame && parts.heading.empty() && !isEmbedded) return;
    const auto written = wikiTarget(title);
    if (!written) return;
    std::string link = "[[" + *written;
    if (!parts.heading.empty()) link += "/" + parts.heading;
    std::string alias = parts.alias;
    if (alias.empty() && !isSame && parts.heading.empty() && !isInTable(range))
      alias = parts.target;
    if (!alias.empty()) link += (parts.isBarEscaped ? "\\|" : "|") + alias;
    replace(range, link + "]]");
  }

  const std::string& text_;
  fs::path directory_;
  const VaultIndex& index_;
  const std::set<std::string>& unusable_;
  std::vector<ByteRange> tables_;
  std::vector<zephyrdown::ZDKASTOperationResult> operations_;
  std::unordered_map<const FoundFile*, std::string> names_;
  std::unordered_set<std::string> taken_;  ///< the same names, case-folded
  std::size_t passed_ = 0;  ///< the end of the last link that was rewritten as a whole
  RelinkedText result_;
};

}  // namespace

RelinkedText relinked(const std::string& text, const FoundFile& from, const VaultIndex& index,
                      const std::set<std::string>& unusable) {
  return Relinker(text, from, index, unusable).run();
}

}  // namespace tavi::import
