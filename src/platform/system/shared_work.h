#pragma once

#include <cstddef>
#include <functional>
#include <future>
#include <memory>

namespace platform::system {

/// Independent steps that another thread begins, and that this thread helps to finish.
class SharedWork {
 public:
  /// Nothing to do.
  SharedWork() = default;
  /// Calls `step` with each number below `count`. In another thread at once if `inBackground`, and
  /// unless the system refuses a thread; otherwise in `finish`. Steps run concurrently, and must
  /// not use the database.
  SharedWork(std::size_t count, std::function<void(std::size_t)> step, bool inBackground);

  /// Does the steps that no thread has begun yet, and returns when all are done. Throws what a step
  /// throws; some steps may then be left out.
  void finish();

 private:
  struct Steps;
  struct Delete {
    void operator()(Steps* steps) const;
  };

  std::unique_ptr<Steps, Delete> steps_;
  std::future<void> others_;  // destroyed first, which waits for the thread
};

}  // namespace platform::system
