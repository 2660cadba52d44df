#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <boost/json/value.hpp>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "json/json_reader.h"
#include "json/json_writer.h"
#include "mcp/line_reader.h"
#include "platform/text/utf8.h"
#include "support/fuzzing.h"

// Fuzzes the input of the server: LineReader splits bytes into the same lines as a simple split,
// each line is JSON or a JSONParseError, and a value written in either style is read back
// unchanged.

namespace {

using namespace tavi;
using support::require;

std::vector<std::string> plainlyCut(std::string_view bytes) {
  std::vector<std::string> lines;
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    std::string_view line = bytes.substr(0, end);
    if (end != std::string_view::npos && line.ends_with('\r')) line.remove_suffix(1);
    lines.push_back(platform::text::replacingInvalidUTF8(line));
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
  }
  return lines;
}

/// A file in memory with the bytes, positioned at its start.
class File {
 public:
  explicit File(std::string_view bytes) : descriptor_(::memfd_create("input", MFD_CLOEXEC)) {
    require(::write(descriptor_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    ::lseek(descriptor_, 0, SEEK_SET);
  }
  ~File() { ::close(descriptor_); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

JSONValue converted(const boost::json::value& value) {
  switch (value.kind()) {
    case boost::json::kind::null:
      return {};
    case boost::json::kind::bool_:
      return value.get_bool();
    case boost::json::kind::int64:
      return value.get_int64();
    case boost::json::kind::uint64:  // above the range of JSONValue's integers
      return static_cast<double>(value.get_uint64());
    case boost::json::kind::double_:
      return value.get_double();
    case boost::json::kind::string:
      return std::string_view(value.get_string());
    case boost::json::kind::array: {
      JSONValue::Array elements;
      for (const auto& element : value.get_array()) elements.push_back(converted(element));
      return elements;
    }
    case boost::json::kind::object: {
      JSONValue::Object members;
      for (const auto& [name, member] : value.get_object()) {
        members.emplace_back(std::string(name), converted(member));
      }
      return members;
    }
  }
  return {};
}

bool isNumber(const JSONValue& value) {
  return value.kind() == JSONValue::Kind::integer || value.kind() == JSONValue::Kind::number;
}

double numberIn(const JSONValue& value) {
  return value.kind() == JSONValue::Kind::integer ? static_cast<double>(value.integer())
                                                  : value.number();
}

/// The parser rounds long numbers to one of the nearest doubles, not always to the nearest.
bool areNear(double a, double b) {
  return a == b || std::abs(a - b) <= 4 * std::numeric_limits<double>::epsilon() * std::abs(a) ||
         std::max(std::abs(a), std::abs(b)) < 1e-300;
}

/// Numbers are the same with and without a decimal point; members may be in any order.
bool areSame(const JSONValue& a, const JSONValue& b) {
  if (isNumber(a) && isNumber(b)) {
    const bool areIntegers = a.kind() == b.kind() && a.kind() == JSONValue::Kind::integer;
    return areIntegers ? a == b : areNear(numberIn(a), numberIn(b));
  }
  if (a.kind() != b.kind()) return false;
  if (a.kind() == JSONValue::Kind::array) {
    return a.array().size() == b.array().size() &&
           std::equal(a.array().begin(), a.array().end(), b.array().begin(), areSame);
  }
  if (a.kind() != JSONValue::Kind::object) return a == b;
  return a.object().size() == b.object().size() &&
         std::all_of(a.object().begin(), a.object().end(), [&](const auto& member) {
           const JSONValue* other = b.find(member.first);
           return other != nullptr && areSame(member.second, *other);
         });
}

/// 1e400 is read as infinity, which JSON cannot represent; the server refuses it.
bool isFinite(const JSONValue& value) {
  if (value.kind() == JSONValue::Kind::array)
    return std::all_of(value.array().begin(), value.array().end(), isFinite);
  if (value.kind() == JSONValue::Kind::object)
    return std::all_of(value.object().begin(), value.object().end(),
                       [](const auto& member) { return isFinite(member.second); });
  return value.kind() != JSONValue::Kind::number || std::isfinite(value.number());
}

void checkLine(const std::string& line) {
  JSONValue value;
  try {
    value = converted(parseJSON(line));
  } catch (const JSONParseError&) {
    return;
  }
  if (!isFinite(value)) return;
  for (const JSONStyle style : {JSONStyle::commandLine, JSONStyle::wire}) {
    StringSink sink;
    JSONWriter(sink, style).value(value);
    const std::string written = sink.take();
    require(written.find('\n') == std::string::npos);
    require(areSame(converted(parseJSON(written)), value));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes = support::fuzzed(data, size);
  const File input(bytes);
  mcp::LineReader reader(input.descriptor());
  for (const std::string& line : plainlyCut(bytes)) {
    require(reader.next() == line);
    checkLine(line);
  }
  require(!reader.next());
  return 0;
}
