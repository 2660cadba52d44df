#include "domain/failure.h"

#include <new>

#include "platform/text/controls.h"

namespace tavi {

std::string failureMessage(const std::exception& error) {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return "There is not enough memory";
  const auto* failure = dynamic_cast<const Failure*>(&error);
  return platform::text::escapingControls(failure ? failure->message() : error.what());
}

}  // namespace tavi
