#include "cli/output/escapes.h"

#include "json/byte_scan.h"

namespace tavi {

void writeEscapedTSV(ByteSink& sink, std::string_view text) {
  using Escapes = ByteSet<0, '\\', '\n', '\r', '\t'>;
  while (true) {
    const std::size_t plain = Escapes::lengthBefore(text);
    sink.append(text.substr(0, plain));
    if (plain == text.size()) return;
    const char byte = text[plain];
    sink.put('\\');
    sink.put(byte == '\n' ? 'n' : byte == '\r' ? 'r' : byte == '\t' ? 't' : '\\');
    text.remove_prefix(plain + 1);
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
