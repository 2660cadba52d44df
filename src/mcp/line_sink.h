#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

#include "json/byte_sink.h"

namespace tavi::mcp {

/// Nothing can be written any more, for the most part because the client has gone. No
/// std::exception on purpose: whoever turns failures into answers must not take it for one.
struct OutputLost {
  std::error_code why;
};

/// Lines of output. The beginning of a line is held back, so that until then it can still become
/// another; a line that fits goes out whole, in one write(2), when it is finished, and a longer
/// one as it is written. All functions throw OutputLost.
class LineSink final : public ByteSink {
 public:
  static constexpr std::size_t heldBack = 2 * 1024 * 1024;

  explicit LineSink(int descriptor) : out_(descriptor) {}

  void finishLine();

  /// Gives up the line that is being written. True when nothing of it has gone out; otherwise it
  /// ends here, cut short.
  bool abandonLine();

 private:
  void accept(std::string_view bytes) override;
  void writeOut(std::string_view bytes);

  DescriptorSink out_;
  std::string held_;
  bool begun_ = false;  ///< part of the line has gone out
  bool dropping_ = false;
};

}  // namespace tavi::mcp
