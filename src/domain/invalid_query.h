#pragma once

#include "domain/failure.h"

namespace tavi {

/// Thrown by the searches of NoteStore for a query that cannot mean anything, such as one with a
/// directive that does not exist.
class InvalidQuery : public Failure {
  using Failure::Failure;
};

}  // namespace tavi
