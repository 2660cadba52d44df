#include "operations/attachment_operations.h"

#include <gtest/gtest.h>

#include "memory_note_store.h"
#include "refusal.h"

namespace tavi {
namespace {

using testing::refusal;

TEST(AttachmentOperations, AddListReadAndDelete) {
  testing::MemoryNoteStore store;
  store.add("Mars");
  const auto response = AddAttachmentOp::execute(
      {.title = "mars", .filename = "a.bin", .data = {.bytes = std::string(1, '\0')}}, store);
  EXPECT_EQ(response.attachments, std::vector<std::string>{"a.bin"});

  const auto listed = ListAttachmentsOp::execute({.id = "ID-1"}, store);
  ASSERT_EQ(listed.size(), 1U);
  EXPECT_EQ(listed[0].size, 1);
  EXPECT_EQ(ReadAttachmentOp::execute({.id = "ID-1", .filename = "a.bin"}, store),
            std::string(1, '\0'));

  DeleteAttachmentOp::execute({.id = "ID-1", .filename = "a.bin"}, store);
  EXPECT_EQ(
      refusal([&] { DeleteAttachmentOp::execute({.id = "ID-1", .filename = "a.bin"}, store); }),
      "attachment_not_found: Attachment not found: a.bin");
}

TEST(AttachmentOperations, RefuseEmptyDataBeforeAnythingElse) {
  testing::MemoryNoteStore store;
  EXPECT_EQ(refusal([&] { AddAttachmentOp::execute({.filename = "a"}, store); }),
            "invalid input: Attachment data is empty");
}

TEST(AttachmentOperations, RefuseALockedNoteAlreadyByItsTitle) {
  testing::MemoryNoteStore store;
  store.add("Mars").metadata.locked = true;
  EXPECT_EQ(refusal([&] { ListAttachmentsOp::execute({.title = "Mars"}, store); }),
            "note_locked: Note is locked: Mars");
}

}  // namespace
}  // namespace tavi
