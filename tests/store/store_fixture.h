#pragma once

#include <string>

#include "domain/store_errors.h"
#include "support/store_test.h"

namespace tavi {

/// The code of the NoteStoreError that `action` throws, or "not refused".
template <class Action>
std::string refusal(Action action) {
  try {
    action();
  } catch (const NoteStoreError& error) {
    return std::string(error.code());
  }
  return "not refused";
}

}  // namespace tavi
