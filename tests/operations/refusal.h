#pragma once

#include <gtest/gtest.h>

#include <string>

#include "domain/store_errors.h"
#include "operations/operation.h"

namespace tavi::testing {

/// The error that `action` throws, as "invalid input: ..." or "<code>: ..."; "" if it succeeds.
template <class Action>
std::string refusal(const Action& action) {
  try {
    action();
    return "";
  } catch (const OperationError& error) {
    return std::string("invalid input: ") + error.what();
  } catch (const NoteStoreError& error) {
    return std::string(error.code()) + ": " + error.message();
  }
}

}  // namespace tavi::testing
