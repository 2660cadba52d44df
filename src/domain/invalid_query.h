#pragma once

#include <stdexcept>

namespace tavi {

/// Thrown by the searches of NoteStore for a query that cannot mean anything, such as one with a
/// directive that there is none of; what() is the message for the user.
class InvalidQuery : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace tavi
