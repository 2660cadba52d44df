#include "platform/markdown/document.h"

#include <md4c.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <unordered_set>

#include "platform/markdown/entities.h"
#include "platform/markdown/file_names.h"
#include "platform/markdown/hashtag_grammar.h"
#include "platform/markdown/lines.h"
#include "platform/markdown/link_locator.h"
#include "platform/markdown/outline.h"
#include "platform/markdown/parser_input.h"
#include "platform/markdown/parser_mending.h"
#include "platform/markdown/text_pieces.h"
#include "platform/markdown/title_builder.h"
#include "platform/markdown/wiki_links.h"

namespace zephyrdown {
namespace {

constexpr unsigned kDialect = MD_FLAG_TABLES | MD_FLAG_TASKLISTS | MD_FLAG_STRIKETHROUGH |
                              MD_FLAG_WIKILINKS | MD_FLAG_PERMISSIVEAUTOLINKS;

// The parser reports its results by callbacks. Some short texts cause far more callbacks or bytes
// than they contain: a row of a wide table is reported with all its missing cells, and the target
// of a reference at each use. Beyond these limits, reading stops and starts again without tables or
// references.
constexpr std::size_t kCallbacksPerByte = 8;
constexpr std::size_t kTargetBytesPerByte = 16;
constexpr std::size_t kSmallText = 4096;

std::string_view view(const MD_ATTRIBUTE& attribute) {
  return {attribute.text, attribute.size};
}

/// The target with its entities resolved; the parser has already removed its escapes.
std::string resolved(const MD_ATTRIBUTE& attribute) {
  std::string result;
  for (unsigned i = 0; attribute.size > 0 && attribute.substr_offsets[i] < attribute.size; ++i) {
    const MD_OFFSET begin = attribute.substr_offsets[i];
    const auto piece = view(attribute).substr(begin, attribute.substr_offsets[i + 1] - begin);
    if (attribute.substr_types[i] == MD_TEXT_ENTITY) {
      appendEntity(result, piece);
    } else {
      result.append(piece);
    }
  }
  return result;
}

/// The offset after the comment for a preview directly after a link: `<!-- {"preview":"true"} -->`.
std::size_t behindPreviewComment(std::string_view text, std::size_t at) {
  constexpr std::string_view kOpen = "<!--";
  constexpr std::string_view kClose = "-->";
  constexpr std::size_t kLongest = 200;
  if (!text.substr(at).starts_with(kOpen)) return at;
  const std::string_view comment = text.substr(at, std::min(lineEnd(text, at) - at, kLongest));
  const std::size_t close = comment.find(kClose);
  if (close == std::string_view::npos) return at;
  const bool isPreview = comment.substr(0, close).find("\"preview\"") != std::string_view::npos;
  return isPreview ? at + close + kClose.size() : at;
}

BlockKind blockKind(MD_BLOCKTYPE type, const void* detail) {
  switch (type) {
    case MD_BLOCK_H:
      return BlockKind::heading;
    case MD_BLOCK_UL:
      return BlockKind::list;
    case MD_BLOCK_OL:
      return static_cast<const MD_BLOCK_OL_DETAIL*>(detail)->start == 1 ? BlockKind::list
                                                                        : BlockKind::lateList;
    case MD_BLOCK_QUOTE:
      return BlockKind::quote;
    case MD_BLOCK_TABLE:
    case MD_BLOCK_THEAD:
    case MD_BLOCK_TBODY:
    case MD_BLOCK_TR:
    case MD_BLOCK_TH:
    case MD_BLOCK_TD:
      return BlockKind::table;
    case MD_BLOCK_CODE:
      return static_cast<const MD_BLOCK_CODE_DETAIL*>(detail)->fence_char != 0
                 ? BlockKind::fencedCode
                 : BlockKind::indentedCode;
    case MD_BLOCK_HTML:
      return BlockKind::html;
    case MD_BLOCK_HR:
      return BlockKind::rule;
    default:
      return BlockKind::paragraph;
  }
}

/// Optional results besides the document.
struct Extras {
  Outline* outline = nullptr;
  std::vector<TextPiece>* pieces = nullptr;
};

/// Builds the document from the parser's callbacks.
class DocumentReader {
 public:
  DocumentReader(std::string_view text, std::size_t bodyBegin, std::string_view input,
                 const OffsetMap& offsets, Extras extras)
      : text_(text),
        input_(input),
        inputBegin_(bodyBegin),
        offsets_(offsets),
        links_(text),
        budget_(input.size() + kSmallText),
        outline_(extras.outline),
        pieces_(extras.pieces) {
    document_.bodyBegin = inputBegin_;
    if (outline_) *outline_ = {.bodyBegin = inputBegin_};
    if (pieces_) pieces_->clear();
  }

  /// Absent if a limit was exceeded.
  std::optional<Document> read(unsigned dialect) {
    MD_PARSER parser{};
    parser.flags = dialect;
    parser.enter_block = [](MD_BLOCKTYPE type, void* detail, void* reader) {
      return self(reader).enterBlock(type, detail);
    };
    parser.leave_block = [](MD_BLOCKTYPE type, void*, void* reader) {
      return self(reader).leaveBlock(type);
    };
    parser.enter_span = [](MD_SPANTYPE type, void* detail, void* reader) {
      return self(reader).enterSpan(type, detail);
    };
    parser.leave_span = [](MD_SPANTYPE type, void* detail, void* reader) {
      return self(reader).leaveSpan(type, detail);
    };
    parser.text = [](MD_TEXTTYPE type, const MD_CHAR* text, MD_SIZE size, void* reader) {
      return self(reader).readText(type, {text, size});
    };
    if (md_parse(input_.data(), static_cast<MD_SIZE>(input_.size()), &parser, this) != 0) {
      return std::nullopt;
    }
    return finish();
  }

 private:
  /// What is between the last text and the next one.
  enum class Glue { boundary, text, other };

  /// A stretch of text that may go on.
  struct OpenStretch {
    ByteRange range;
    bool opens;  // a "#" as its first byte may start a hashtag
  };

  static DocumentReader& self(void* reader) { return *static_cast<DocumentReader*>(reader); }

  // Must be negative: the parser does not pass on other values through all of its layers.
  static constexpr int kStop = -1;

  int goOn() { return ++callbacks_ > kCallbacksPerByte * budget_ ? kStop : 0; }

  int enterBlock(MD_BLOCKTYPE type, void* detail) {
    endSpans();
    if (type == MD_BLOCK_DOC) return goOn();
    if (type == MD_BLOCK_CODE) document_.hasCode = true;
    endTitleLine();
    if (type == MD_BLOCK_LI) readItem(*static_cast<MD_BLOCK_LI_DETAIL*>(detail));
    if (depth_++ == 0) {
      document_.blocks.push_back({blockKind(type, detail), {passed_, passed_}});
      if (type == MD_BLOCK_H) enterHeading(*static_cast<MD_BLOCK_H_DETAIL*>(detail));
    }
    block_ = type;
    leaf_ = blockKind(type, detail);
    return goOn();
  }

  int leaveBlock(MD_BLOCKTYPE type) {
    endSpans();
    if (type == MD_BLOCK_DOC) return goOn();
    endTitleLine();
    if (--depth_ == 0 && type == MD_BLOCK_H) leaveHeading();
    block_ = MD_BLOCK_P;  // text that follows without a block of its own is an item's
    leaf_ = BlockKind::paragraph;
    return goOn();
  }

  void enterHeading(const MD_BLOCK_H_DETAIL& heading) {
    title_.enterHeading();
    if (outline_ && outline_->titleLevel == 0)
      outline_->titleLevel = static_cast<int>(heading.level);
  }

  void leaveHeading() {
    title_.leaveHeading();
    if (title_.hasHeading() && !document_.headingEnd) document_.headingEnd = passed_;
  }

  /// No span extends beyond its block. The parser does not end all of them: it begins an address
  /// directly before "www." twice and ends it once.
  void endSpans() {
    glue_ = Glue::boundary;
    linkDepth_ = 0;
    spans_ = 0;
    links_.endBlock();
  }

  void endTitleLine() {
    const bool wasOpen = !title_.hasLine();
    title_.endLine();
    if (wasOpen && title_.hasLine()) document_.titleEnd = passed_;
  }

  void readItem(const MD_BLOCK_LI_DETAIL& item) {
    if (item.is_task == 0) return;
    ++(item.task_mark == ' ' ? document_.todoIncomplete : document_.todoCompleted);
    const std::size_t mark = inputBegin_ + offsets_.original(item.task_mark_offset);
    links_.pass({mark - 1, mark + 2});
  }

  int enterSpan(MD_SPANTYPE type, void* detail) {
    glue_ = Glue::boundary;
    spans_ |= 1U << type;
    switch (type) {
      case MD_SPAN_CODE:
        document_.hasCode = true;
        break;
      case MD_SPAN_A:
        return enterLink(LinkKind::link, static_cast<MD_SPAN_A_DETAIL*>(detail)->href);
      case MD_SPAN_IMG:
        document_.hasImages = true;
        return enterLink(LinkKind::image, static_cast<MD_SPAN_IMG_DETAIL*>(detail)->src);
      case MD_SPAN_WIKILINK:
        return enterLink(LinkKind::wikiLink, static_cast<MD_SPAN_WIKILINK_DETAIL*>(detail)->target);
      default:
        break;
    }
    return goOn();
  }

  int enterLink(LinkKind kind, const MD_ATTRIBUTE& target) {
    ++linkDepth_;
    targetBytes_ += target.size;
    if (targetBytes_ > kTargetBytesPerByte * budget_) return kStop;
    const auto offset = offsetOf(view(target));
    links_.enter(kind, offset, offset ? std::string() : resolved(target));
    return goOn();
  }

  int leaveSpan(MD_SPANTYPE type, void* detail) {
    glue_ = Glue::boundary;
    spans_ &= ~(1U << type);
    switch (type) {
      case MD_SPAN_CODE:
        glue_ = Glue::other;
        break;
      case MD_SPAN_A:
        leaveLink(LinkKind::link, &static_cast<MD_SPAN_A_DETAIL*>(detail)->href);
        break;
      case MD_SPAN_IMG:
        leaveLink(LinkKind::image, &static_cast<MD_SPAN_IMG_DETAIL*>(detail)->src);
        break;
      case MD_SPAN_WIKILINK:
        leaveLink(LinkKind::wikiLink, nullptr);
        break;
      default:
        break;
    }
    return goOn();
  }

  void leaveLink(LinkKind kind, const MD_ATTRIBUTE* target) {
    if (linkDepth_ > 0) --linkDepth_;
    glue_ = Glue::other;
    const auto located = links_.leave();
    if (!located) return;
    pass(located->range);
    if (pieces_) pieces_->push_back({located->range, leaf_, 0});  // its label may be empty
    if (kind == LinkKind::wikiLink) {
      addWikiLink(*located);
    } else {
      addFile(*located, *target, kind == LinkKind::image);
    }
  }

  void addWikiLink(const LocatedLink& link) {
    if (outline_)
      outline_->links.push_back({LinkMention::Kind::wikiLink, link.range, link.label, {}, {}});
    const std::size_t length = link.label.end - link.label.begin;
    wikiLinks_.push_back(wikiMention(link.range, text_.substr(link.label.begin, length)));
  }

  void addFile(const LocatedLink& link, const MD_ATTRIBUTE& target, bool isImage) {
    if (outline_) {
      outline_->links.push_back({isImage ? LinkMention::Kind::image : LinkMention::Kind::link,
                                 link.range, link.label, link.destination,
                                 destination(link, target)});
    }
    if (view(target).find('/') != std::string_view::npos) return;
    std::string name = fileNameOfDestination(destination(link, target));
    if (name.empty()) return;
    const ByteRange range{link.range.begin, behindPreviewComment(text_, link.range.end)};
    document_.files.push_back({{range, std::move(name), isImage}, link.label});
  }

  /// The destination as written if the link is an inline one.
  std::string destination(const LocatedLink& link, const MD_ATTRIBUTE& target) const {
    if (!link.destination) return resolved(target);
    const ByteRange& range = *link.destination;
    return unescaped(text_.substr(range.begin, range.end - range.begin));
  }

  int readText(MD_TEXTTYPE type, std::string_view piece) {
    const bool isPlain = type == MD_TEXT_NORMAL || type == MD_TEXT_ENTITY;
    const auto offset = offsetOf(piece);
    if (offset) {
      const ByteRange range{*offset, *offset + piece.size()};
      links_.pass(range);
      if (isPlain && linkDepth_ == 0) addStretch(range);
      if (type == MD_TEXT_HTML && outline_)
        outline_->html.push_back({range, block_ == MD_BLOCK_HTML});
      if (pieces_) pieces_->push_back({range, leaf_, marksOf(type)});
      pass(range);
    }
    if (title_.isOpen()) readTitle(type, offset ? text_.substr(*offset, piece.size()) : piece);
    if (type == MD_TEXT_BR || type == MD_TEXT_SOFTBR) {
      glue_ = Glue::boundary;
    } else {
      glue_ = isPlain ? Glue::text : Glue::other;
    }
    if (type == MD_TEXT_HTML) glue_ = Glue::boundary;
    return goOn();
  }

  unsigned marksOf(MD_TEXTTYPE type) const {
    constexpr unsigned kTextTypes = 16;
    return 1U << type | spans_ << kTextTypes;
  }

  void readTitle(MD_TEXTTYPE type, std::string_view piece) {
    switch (type) {
      case MD_TEXT_BR:
      case MD_TEXT_SOFTBR:
        return endTitleLine();
      case MD_TEXT_ENTITY:
        return title_.appendEntity(piece);
      case MD_TEXT_HTML:
        if (block_ != MD_BLOCK_HTML) return;
        return piece == "\n" ? endTitleLine() : title_.appendHTML(piece);
      case MD_TEXT_CODE:
        return piece == "\n" ? endTitleLine() : title_.append(piece);
      case MD_TEXT_NULLCHAR:
        return title_.append("\uFFFD");
      default:
        return title_.append(piece);
    }
  }

  void addStretch(ByteRange range) {
    if (glue_ == Glue::text && stretch_ && stretch_->range.end == range.begin) {
      stretch_->range.end = range.end;
      return;
    }
    endStretch();
    const bool isEscape = range.begin > passed_ && isBehindBackslash(range.begin);
    stretch_ = {range, glue_ == Glue::boundary && !isEscape};
  }

  void endStretch() {
    if (!stretch_) return;
    readStretch(*stretch_);
    document_.stretches.push_back({static_cast<std::uint32_t>(stretch_->range.begin),
                                   static_cast<std::uint32_t>(stretch_->range.end)});
  }

  void pass(ByteRange range) {
    passed_ = std::max(passed_, range.end);
    Block& block = document_.blocks.back();
    if (block.text.begin == block.text.end) block.text.begin = range.begin;
    block.text.end = std::max(block.text.end, range.end);
  }

  std::optional<std::size_t> offsetOf(std::string_view piece) const {
    const std::less<const char*> before;
    const bool isInside = piece.data() != nullptr && !before(piece.data(), input_.data()) &&
                          before(piece.data(), input_.data() + input_.size());
    if (!isInside) return std::nullopt;
    const auto offset = static_cast<std::size_t>(piece.data() - input_.data());
    return inputBegin_ + offsets_.original(offset);
  }

  Document finish() {
    document_.title = title_.title();
    if (title_.hasHeading()) document_.titleEnd.reset();
    std::sort(document_.files.begin(), document_.files.end(),
              [](const FileMention& a, const FileMention& b) {
                return a.link.range.begin < b.link.range.begin;
              });
    endStretch();
    listWikiLinks();
    return std::move(document_);
  }

  void readStretch(const OpenStretch& stretch) {
    std::size_t begin = stretch.range.begin;
    for (WikiMention& link : longWikiLinks(text_, stretch.range)) {
      if (isBehindBackslash(link.range.begin)) continue;
      readHashtags({begin, link.range.begin}, stretch);
      begin = link.range.end;
      if (outline_) {
        const ByteRange label{link.range.begin + 2, link.range.end - 2};
        outline_->links.push_back({LinkMention::Kind::wikiLink, link.range, label, {}, {}});
      }
      wikiLinks_.push_back(std::move(link));
    }
    readHashtags({begin, stretch.range.end}, stretch);
  }

  void readHashtags(ByteRange range, const OpenStretch& stretch) {
    const bool opens = range.begin == stretch.range.begin && stretch.opens;
    findHashtags(text_, range, opens, document_.hashtags);
  }

  bool isBehindBackslash(std::size_t position) const {
    return position > 0 && text_[position - 1] == '\\';
  }

  void listWikiLinks() {
    std::sort(wikiLinks_.begin(), wikiLinks_.end(),
              [](const auto& a, const auto& b) { return a.range.begin < b.range.begin; });
    std::unordered_set<std::string_view> known;
    for (const WikiMention& link : wikiLinks_) {
      if (link.title.empty() || !known.insert(link.title).second) continue;
      document_.wikiLinks.push_back(link.title);
    }
  }

  std::string_view text_;
  std::string_view input_;  // what the parser reads: the body, with some marks masked
  std::size_t inputBegin_;
  const OffsetMap& offsets_;
  LinkLocator links_;
  std::size_t budget_;
  Document document_;
  TitleBuilder title_;
  Outline* outline_;                // filled along the way where one is wanted
  std::vector<TextPiece>* pieces_;  // likewise
  std::vector<WikiMention> wikiLinks_;
  std::optional<OpenStretch> stretch_;
  Glue glue_ = Glue::boundary;
  MD_BLOCKTYPE block_ = MD_BLOCK_DOC;
  BlockKind leaf_ = BlockKind::paragraph;
  unsigned spans_ = 0;  // bits of the types of the open spans
  int depth_ = 0;
  int linkDepth_ = 0;
  std::size_t passed_ = 0;  // the end of the last piece with a position in the text
  std::size_t callbacks_ = 0;
  std::size_t targetBytes_ = 0;
};

Document readDocumentWith(Extras extras, std::string_view text) {
  Document unread;
  unread.bodyBegin = bodyBegin(text);
  if (text.size() > std::numeric_limits<MD_SIZE>::max() / 2) return unread;
  const std::string_view body = text.substr(unread.bodyBegin);
  std::optional<std::string> copy = maskedForParser(body);
  const std::vector<Mend> mends = mendsForParser(copy ? *copy : body);
  const OffsetMap offsets(mends);
  if (!mends.empty()) mend(copy ? *copy : copy.emplace(body), mends);
  const std::string_view input = copy ? *copy : body;
  const unsigned dialect =
      hasEndlessAddresses(input) ? kDialect & ~unsigned{MD_FLAG_PERMISSIVEAUTOLINKS} : kDialect;
  if (auto document = DocumentReader(text, unread.bodyBegin, input, offsets, extras).read(dialect))
    return std::move(*document);
  const std::string plain = maskedForPlainReading(input);
  auto document = DocumentReader(text, unread.bodyBegin, plain, offsets, extras)
                      .read(dialect & ~unsigned{MD_FLAG_TABLES});
  return document ? std::move(*document) : unread;
}

}  // namespace

Document readDocument(std::string_view text) {
  return readDocumentWith(Extras{}, text);
}

Document readDocument(std::string_view text, std::vector<TextPiece>& pieces) {
  return readDocumentWith(Extras{.pieces = &pieces}, text);
}

Outline outlineOf(std::string_view text) {
  Outline outline;
  const Document document = readDocumentWith(Extras{.outline = &outline}, text);
  for (const Block& block : document.blocks)
    if (block.kind == BlockKind::table) outline.tables.push_back(block.text);
  std::stable_sort(outline.links.begin(), outline.links.end(),
                   [](const auto& a, const auto& b) { return a.range.begin < b.range.begin; });
  return outline;
}

const TextStretch* stretchAt(const Document& document, std::size_t position) {
  const auto found =
      std::partition_point(document.stretches.begin(), document.stretches.end(),
                           [&](const TextStretch& stretch) { return stretch.end <= position; });
  return found != document.stretches.end() && found->begin <= position ? &*found : nullptr;
}

}  // namespace zephyrdown
