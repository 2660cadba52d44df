#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "bytes/byte_sink.h"
#include "platform/system/file_descriptor.h"

namespace tavi::mcp {

/// Nothing can be written any more, for the most part because the client has gone. No
/// std::exception on purpose: whoever turns failures into answers must not take it for one.
struct OutputLost {
  std::error_code why;
};

/// Lines of output. Nothing of a line goes out before it is finished, so until then it can still
/// become another. What is kept back lies in memory, and beyond `heldInMemory` in a file without a
/// name among the temporary ones. A line that was held in memory goes out in one write(2).
class LineSink final : public ByteSink {
 public:
  static constexpr std::size_t heldInMemory = 2 * 1024 * 1024;

  explicit LineSink(int descriptor) : out_(descriptor) {}

  /// Throws OutputLost.
  void finishLine();

  /// Gives up the line that is being written.
  void abandonLine();

 private:
  void accept(std::string_view bytes) override;
  bool spill(std::string_view bytes);
  void writeOut(std::string_view bytes);
  void writeOutSpilled();
  void forgetLine();

  DescriptorSink out_;
  std::string held_;                          ///< the line's beginning
  platform::system::FileDescriptor spilled_;  ///< what follows it, if any
  std::uint64_t spilledSize_ = 0;             ///< bytes
  std::string rest_;                          ///< what follows that, once the file takes no more
};

}  // namespace tavi::mcp
