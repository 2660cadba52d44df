#include "platform/markdown/line_readings.h"

#include <algorithm>

#include "platform/markdown/lines.h"
#include "platform/markdown/text_pieces.h"

namespace zephyrdown {
namespace {

/// Finds the line of each offset; offsets come in almost ascending order.
class LineTable {
 public:
  explicit LineTable(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); at = nextLine(text, at)) begins_.push_back(at);
  }

  std::size_t count() const { return begins_.size(); }
  std::size_t lineAt(std::size_t offset) const {
    const auto next = std::upper_bound(begins_.begin(), begins_.end(), offset);
    return static_cast<std::size_t>(next - begins_.begin()) - 1;
  }
  std::size_t begin(std::size_t line) const { return begins_[line]; }

 private:
  std::vector<std::size_t> begins_;
};

}  // namespace

std::vector<LineReading> lineReadings(std::string_view text) {
  std::vector<TextPiece> pieces;
  const Document document = readDocument(text, pieces);
  const LineTable table(text);
  std::vector<LineReading> readings(table.count());
  const auto addName = [&](std::size_t offset, const std::string& name) {
    const std::size_t line = table.lineAt(offset);
    readings[line].names.emplace_back(offset - table.begin(line), name);
  };
  for (const TextPiece& piece : pieces) {
    if (piece.range.begin == piece.range.end) continue;
    const std::size_t last = table.lineAt(piece.range.end - 1);
    for (std::size_t line = table.lineAt(piece.range.begin); line <= last; ++line) {
      LineReading& reading = readings[line];
      if (!reading.kind) {
        reading.kind = piece.kind;
        reading.textBegin = std::max(piece.range.begin, table.begin(line)) - table.begin(line);
      }
      reading.marks |= piece.marks;
      reading.endsInBackslash = text[piece.range.end - 1] == '\\';
    }
  }
  for (const HashtagMention& tag : document.hashtags) addName(tag.range.begin, tag.name);
  for (const FileMention& file : document.files) addName(file.link.range.begin, file.link.filename);
  return readings;
}

}  // namespace zephyrdown
