#include "mcp/line_sink.h"

#include <utility>

namespace tavi::mcp {

void LineSink::finishLine() {
  put('\n');
  flush();
  if (!begun_) writeOut(held_);
  held_.clear();
  begun_ = false;
}

bool LineSink::abandonLine() {
  dropping_ = true;
  flush();
  dropping_ = false;
  held_.clear();
  if (!begun_) return true;
  finishLine();
  return false;
}

void LineSink::accept(std::string_view bytes) {
  if (dropping_) return;
  if (!begun_ && held_.size() + bytes.size() <= heldBack) {
    held_ += bytes;
    return;
  }
  if (!std::exchange(begun_, true)) writeOut(std::exchange(held_, {}));
  writeOut(bytes);
}

void LineSink::writeOut(std::string_view bytes) try {
  out_.append(bytes);
  out_.flush();
} catch (const std::system_error& failure) {
  throw OutputLost{failure.code()};
}

}  // namespace tavi::mcp
