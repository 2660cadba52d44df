#include "vault/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

namespace tavi::vault {
namespace {

constexpr auto pause = std::chrono::milliseconds(100);

void write(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

}  // namespace

Progress::Progress(std::size_t total, std::string what)
    : total_(total),
      what_(std::move(what)),
      isShown_(::isatty(STDERR_FILENO) == 1),
      begin_(Clock::now()),
      last_(begin_) {}

Progress::~Progress() {
  if (last_ != begin_) write("\r\x1b[K");  // erases the line
}

void Progress::step() {
  ++done_;
  if (!isShown_) return;
  const auto now = Clock::now();
  if (now - last_ < pause) return;
  last_ = now;
  show(now);
}

void Progress::show(Clock::time_point now) {
  const double passed = std::chrono::duration<double>(now - begin_).count();
  const double rate = static_cast<double>(done_) / passed;
  const double left = static_cast<double>(total_ - done_) / rate;
  write(fmt::format("\r{} of {} {}, {:.0f} a second, {:.0f} s left\x1b[K", done_, total_, what_,
                    rate, left));
}

}  // namespace tavi::vault
