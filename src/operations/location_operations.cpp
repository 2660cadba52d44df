#include "operations/location_operations.h"

#include <string_view>

#include "domain/store_errors.h"
#include "operations/note_resolver.h"
#include "platform/system/workspace.h"
#include "platform/text/utf8.h"

namespace tavi {
namespace {

WriteResponse move(const MoveNoteInput& input, NoteLocation target, NoteStore& store) {
  return store.moveNote(
      OperationNoteResolver::resolveNoteIDEvenIfLocked(input.id, input.title, store), target);
}

/// Whether a byte may appear unencoded in the value of a query item (RFC 3986, 3.4): unreserved
/// characters, and delimiters that do not separate query items.
bool isAllowedInQueryItem(char byte) {
  const bool alphanumeric =
      (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
  return alphanumeric || std::string_view("-._~!$'()*,:@/?").find(byte) != std::string_view::npos;
}

std::string percentEncoded(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string encoded;
  for (char byte : text) {
    if (isAllowedInQueryItem(byte)) {
      encoded += byte;
      continue;
    }
    const auto value = static_cast<unsigned char>(byte);
    encoded += {'%', digits[value >> 4], digits[value & 15]};
  }
  return encoded;
}

std::string openNoteURL(const std::string& id, const OpenNoteInput& input) {
  if (!platform::text::isValidUTF8(id) || !platform::text::isValidUTF8(input.header.value_or("")))
    throw OperationError::invalidInput("Could not construct open-note URL");
  std::string url = "tavi://x-callback-url/open-note?id=" + percentEncoded(id);
  if (input.header && !input.header->empty()) url += "&header=" + percentEncoded(*input.header);
  if (input.edit) url += "&edit=yes";
  if (input.newWindow) url += "&new_window=yes";
  if (input.floating) url += "&float=yes";
  return url;
}

}  // namespace

WriteResponse TrashNoteOp::execute(const Input& input, NoteStore& store) {
  return move(input, NoteLocation::trash, store);
}

WriteResponse ArchiveNoteOp::execute(const Input& input, NoteStore& store) {
  return move(input, NoteLocation::archive, store);
}

WriteResponse RestoreNoteOp::execute(const Input& input, NoteStore& store) {
  return move(input, NoteLocation::notes, store);
}

void OpenNoteOp::execute(const Input& input, NoteStore& store) {
  execute(input, store, platform::system::openURL);
}

void OpenNoteOp::execute(const Input& input, NoteStore& store, const URLOpener& open) {
  const std::string id =
      OperationNoteResolver::resolveNoteIDEvenIfLocked(input.id, input.title, store);
  if (!open(openNoteURL(id, input)))
    throw NoteStoreError::storeUnavailable("Could not open Tavi. Is the app installed?");
}

}  // namespace tavi
