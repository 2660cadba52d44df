#include "platform/system/shared_work.h"

#include <atomic>
#include <utility>

namespace platform::system {

struct SharedWork::Steps {
  std::size_t count;
  std::function<void(std::size_t)> step;
  std::atomic<std::size_t> next = 0;

  void doThoseLeft() {
    for (std::size_t i = next++; i < count; i = next++) step(i);
  }
};

void SharedWork::Delete::operator()(Steps* steps) const {
  delete steps;
}

SharedWork::SharedWork(std::size_t count, std::function<void(std::size_t)> step, bool inBackground)
    : steps_(new Steps{count, std::move(step)}) {
  if (!inBackground) return;
  // With `deferred` allowed, the library does not fail when the system refuses a thread.
  others_ = std::async(std::launch::async | std::launch::deferred,
                       [steps = steps_.get()] { steps->doThoseLeft(); });
}

void SharedWork::finish() {
  if (!steps_) return;
  steps_->doThoseLeft();
  if (others_.valid()) others_.get();
}

}  // namespace platform::system
