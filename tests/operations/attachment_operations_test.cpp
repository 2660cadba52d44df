#include "operations/attachment_operations.h"

#include <gtest/gtest.h>

#include "refusal.h"
#include "support/store_test.h"

namespace tavi {
namespace {

using testing::refusal;

using AttachmentOperations = StoreTest;

TEST_F(AttachmentOperations, AddListReadAndDelete) {
  add("# Mars");
  const std::string bytes(1, '\0');
  const auto response = AddAttachmentOp::execute(
      {.title = "mars", .filename = "a.bin", .data = {.bytes = bytes}}, store());
  EXPECT_EQ(response.attachments, Texts{"a.bin"});
  EXPECT_EQ(ListAttachmentsOp::execute({.id = "ID-1"}, store()).at(0).size, 1);
  EXPECT_EQ(ReadAttachmentOp::execute({.id = "ID-1", .filename = "a.bin"}, store()), bytes);

  const auto remove = [&] {
    DeleteAttachmentOp::execute({.id = "ID-1", .filename = "a.bin"}, store());
  };
  EXPECT_EQ(refusal(remove), "");
  EXPECT_EQ(refusal(remove), "attachment_not_found: Attachment not found: a.bin");
}

TEST_F(AttachmentOperations, RefuseEmptyDataBeforeTheyLookForTheNote) {
  EXPECT_EQ(refusal([&] { AddAttachmentOp::execute({.filename = "a"}, store()); }),
            "invalid input: Attachment data is empty");
}

TEST_F(AttachmentOperations, RefuseALockedNoteByItsTitle) {
  lock(add("# Mars"));
  EXPECT_EQ(refusal([&] { ListAttachmentsOp::execute({.title = "Mars"}, store()); }),
            "note_locked: Note is locked: Mars");
}

}  // namespace
}  // namespace tavi
