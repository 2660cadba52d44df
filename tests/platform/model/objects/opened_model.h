#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "platform/model/objects/core_data_stack.h"
#include "support/throwaway_home.h"

namespace tavimodel {

/// A test with an open model on a database in a temporary home.
class OpenedModel : public testing::Test {
 protected:
  void SetUp() override { reopen(); }

  void reopen() {
    std::string error;
    stack.reset();
    stack = KVCoreDataStackForExtensions::initStackOutputError(home.data(), error);
    ASSERT_NE(stack, nullptr) << error;
  }

  ManagedObjectContext& context() { return *stack->managedObjectContext(); }

  support::ThrowawayHome home{support::ThrowawayHome::On::memory};
  std::unique_ptr<KVCoreDataStackForExtensions> stack;
};

}  // namespace tavimodel
