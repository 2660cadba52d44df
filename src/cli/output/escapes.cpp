#include "cli/output/escapes.h"

#include "bytes/byte_set.h"

namespace tavi {

void writeEscapedTSV(ByteSink& sink, std::string_view text) {
  // Only three control characters are escaped, but one comparison finds all of them at once.
  using Candidates = ByteSet<0x20, '\\'>;
  std::size_t looked = 0;
  while (true) {
    looked += Candidates::lengthBefore(text.substr(looked));
    if (looked == text.size()) return sink.append(text);
    const char byte = text[looked++];
    const char letter = byte == '\n'   ? 'n'
                        : byte == '\r' ? 'r'
                        : byte == '\t' ? 't'
                        : byte == '\\' ? '\\'
                                       : '\0';
    if (letter == '\0') continue;
    sink.append(text.substr(0, looked - 1));
    sink.put('\\');
    sink.put(letter);
    text.remove_prefix(looked);
    looked = 0;
  }
}

void writeEscapedCSV(ByteSink& sink, std::string_view text) {
  using Special = ByteSet<0, ',', '"', '\n', '\r'>;
  if (Special::lengthBefore(text) == text.size()) return sink.append(text);
  sink.put('"');
  for (std::size_t quote; (quote = text.find('"')) != std::string_view::npos;) {
    sink.append(text.substr(0, quote + 1));
    sink.put('"');
    text.remove_prefix(quote + 1);
  }
  sink.append(text);
  sink.put('"');
}

}  // namespace tavi
