#include "domain/write_response.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace tavi {
namespace {

NoteMetadata metadata() {
  return {.id = "42",
          .title = "Plan",
          .locked = false,
          .contentHash = "e3b0c44",
          .contentLength = 7,
          .created = {1},
          .modified = {2},
          .pins = {"global", "#work"},
          .location = NoteLocation::notes,
          .todos = 1,
          .done = 2,
          .tags = {"a", "b", "c"},
          .attachments = {"x.png"}};
}

/// The names of the fields that are present, in order.
std::string fields(const WriteResponse& r) {
  std::string names;
  const auto note = [&names](const char* name, bool isThere) {
    if (isThere) names += std::string(names.empty() ? "" : " ") + name;
  };
  note("id", r.id.has_value());
  note("title", r.title.has_value());
  note("locked", r.locked.has_value());
  note("contentHash", r.contentHash.has_value());
  note("contentLength", r.contentLength.has_value());
  note("created", r.created.has_value());
  note("modified", r.modified.has_value());
  note("location", r.location.has_value());
  note("todos", r.todos.has_value());
  note("done", r.done.has_value());
  note("pins", r.pins.has_value());
  note("tags", r.tags.has_value());
  note("attachments", r.attachments.has_value());
  note("content", r.content.has_value());
  return names;
}

TEST(WriteResponse, HoldsEverythingOfANewNote) {
  constexpr const char* kAll =
      "id title locked contentHash contentLength created modified location todos done pins tags "
      "attachments";
  EXPECT_EQ(fields(WriteResponse::full(metadata())), kAll);
  const WriteResponse response = WriteResponse::full(metadata(), "text");
  EXPECT_EQ(fields(response), std::string(kAll) + " content");
  EXPECT_EQ(response.content, "text");
  EXPECT_EQ(response.pins, metadata().pins);
}

TEST(WriteResponse, HoldsOnlyWhatChanged) {
  const std::pair<const char*, std::function<void(NoteMetadata&)>> changes[] = {
      {"", [](NoteMetadata&) {}},
      {"", [](NoteMetadata& note) { note.id = "43"; }},
      {"title", [](NoteMetadata& note) { note.title = "plan"; }},
      {"locked", [](NoteMetadata& note) { note.locked = true; }},
      {"contentHash", [](NoteMetadata& note) { note.contentHash = ""; }},
      {"contentLength", [](NoteMetadata& note) { note.contentLength = 8; }},
      {"created", [](NoteMetadata& note) { note.created.seconds += 0.5; }},
      {"modified", [](NoteMetadata& note) { note.modified.seconds += 0.5; }},
      {"location", [](NoteMetadata& note) { note.location = NoteLocation::trash; }},
      {"todos done", [](NoteMetadata& note) { std::swap(note.todos, note.done); }},
      {"",
       [](NoteMetadata& note) {
         note.pins = {"#work", "global", "global"};
       }},
      {"pins", [](NoteMetadata& note) { note.pins = {}; }},
      {"",
       [](NoteMetadata& note) {
         note.tags = {"c", "b", "a", "a"};
       }},
      {"tags",
       [](NoteMetadata& note) {
         note.tags = {"c", "a"};
       }},
      {"attachments", [](NoteMetadata& note) { note.attachments.push_back("y.png"); }},
  };
  for (const auto& [expected, change] : changes) {
    NoteMetadata post = metadata();
    change(post);
    EXPECT_EQ(fields(WriteResponse::difference(metadata(), post)), expected);
  }
}

TEST(WriteResponse, GivesAChangedListWholeAndInItsOrder) {
  NoteMetadata post = metadata();
  post.tags = {"c", "a"};
  EXPECT_EQ(WriteResponse::difference(metadata(), post).tags, (std::vector<std::string>{"c", "a"}));
}

}  // namespace
}  // namespace tavi
