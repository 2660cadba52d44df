#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "bytes/byte_sink.h"
#include "platform/system/file_descriptor.h"

namespace tavi::mcp {

/// The output cannot be written, usually because the client has gone. Deliberately not a
/// std::exception: code that turns exceptions into answers must not catch it.
struct OutputLost {
  std::error_code why;
};

/// Writes output line by line. A line is held back until it is finished, so it can be abandoned and
/// replaced: up to `heldInMemory` bytes in memory, the rest in an unnamed temporary file
/// (O_TMPFILE). A line that fits in memory is written with one write(2).
class LineSink final : public ByteSink {
 public:
  static constexpr std::size_t heldInMemory = 2 * 1024 * 1024;  ///< bytes

  /// The caller owns the descriptor.
  explicit LineSink(int descriptor) : out_(descriptor) {}

  /// Ends the line and writes it out. Throws OutputLost.
  void finishLine();

  /// Discards the unfinished line.
  void abandonLine();

 private:
  void accept(std::string_view bytes) override;
  bool spill(std::string_view bytes);
  void writeOut(std::string_view bytes);
  void writeOutSpilled();
  void forgetLine();

  DescriptorSink out_;
  std::string held_;                          ///< the start of the line
  platform::system::FileDescriptor spilled_;  ///< the part after that, if it does not fit
  std::uint64_t spilledSize_ = 0;             ///< bytes
  std::string rest_;                          ///< the part after that, if the file cannot take it
};

}  // namespace tavi::mcp
