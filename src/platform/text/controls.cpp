#include "platform/text/controls.h"

#include "platform/text/utf8.h"

namespace platform::text {
namespace {

bool isControl(char32_t scalar) {
  return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0) || scalar == 0x2028 || scalar == 0x2029;
}

void appendEscape(std::string& out, char32_t control) {
  if (control == '\n') {
    out += "\\n";
  } else if (control == '\r') {
    out += "\\r";
  } else if (control == '\t') {
    out += "\\t";
  } else {
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out += "0123456789abcdef"[control >> shift & 0xF];
  }
}

}  // namespace

std::string escapingControls(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const DecodedScalar scalar = decodeScalar(text, at);
    if (isControl(scalar.value)) {
      appendEscape(result, scalar.value);
    } else {
      appendScalar(result, scalar.value);
    }
    at = scalar.next;
  }
  return result;
}

}  // namespace platform::text
