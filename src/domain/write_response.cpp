#include "domain/write_response.h"

#include <algorithm>
#include <set>

namespace tavi {
namespace {

template <class Value>
std::optional<Value> changed(const Value& pre, const Value& post) {
  return pre == post ? std::nullopt : std::optional(post);
}

std::optional<std::vector<std::string>> changed(const std::vector<std::string>& pre,
                                                const std::vector<std::string>& post) {
  const std::set<std::string_view> before(pre.begin(), pre.end());
  const std::set<std::string_view> after(post.begin(), post.end());
  return before == after ? std::nullopt : std::optional(post);
}

}  // namespace

WriteResponse WriteResponse::full(const NoteMetadata& post, std::optional<std::string> content) {
  return {.id = post.id,
          .title = post.title,
          .locked = post.locked,
          .contentHash = post.contentHash,
          .contentLength = post.contentLength,
          .created = post.created,
          .modified = post.modified,
          .location = post.location,
          .todos = post.todos,
          .done = post.done,
          .pins = post.pins,
          .tags = post.tags,
          .attachments = post.attachments,
          .content = std::move(content)};
}

WriteResponse WriteResponse::difference(const NoteMetadata& pre, const NoteMetadata& post) {
  return {.id = std::nullopt,
          .title = changed(pre.title, post.title),
          .locked = changed(pre.locked, post.locked),
          .contentHash = changed(pre.contentHash, post.contentHash),
          .contentLength = changed(pre.contentLength, post.contentLength),
          .created = changed(pre.created, post.created),
          .modified = changed(pre.modified, post.modified),
          .location = changed(pre.location, post.location),
          .todos = changed(pre.todos, post.todos),
          .done = changed(pre.done, post.done),
          .pins = changed(pre.pins, post.pins),
          .tags = changed(pre.tags, post.tags),
          .attachments = changed(pre.attachments, post.attachments),
          .content = std::nullopt};
}

}  // namespace tavi
