#include "operations/pin_operations.h"

#include "domain/store_errors.h"
#include "domain/tag_parser.h"
#include "operations/note_resolver.h"
#include "operations/tag_name.h"

namespace tavi {
namespace {

constexpr std::string_view global = "global";

/// The targets as the store expects them: "global", or the canonical names of tags. Throws
/// OperationError for an invalid name and NoteStoreError (`tagsNotFound`).
std::vector<std::string> checkedTargets(const std::vector<std::string>& targets, NoteStore& store) {
  std::vector<std::string> names;
  for (const std::string& target : targets) {
    names.push_back(target == global ? target : checkedTagName(target, "Pin target"));
  }
  std::vector<std::string> missing;
  for (std::size_t i = 0; i < names.size(); ++i)
    if (targets[i] != global && !store.tagExists(names[i])) missing.push_back(names[i]);
  if (!missing.empty()) throw NoteStoreError::tagsNotFound(missing);
  return names;
}

using PinWrite = WriteResponse (NoteStore::*)(const std::string& id);
using TagPinWrite = WriteResponse (NoteStore::*)(const std::string& id, const std::string& tag);

template <class Input>
WriteResponse changePins(const Input& input, NoteStore& store, PinWrite everywhere,
                         TagPinWrite inTag) {
  if (input.targets.empty())
    throw OperationError::invalidInput("Provide at least one pin target (global or tag name)");
  const std::string id =
      OperationNoteResolver::resolveNoteIDEvenIfLocked(input.id, input.title, store);
  const std::vector<std::string> names = checkedTargets(input.targets, store);

  const NoteMetadata before = store.metadataWithID(id);
  for (std::size_t i = 0; i < names.size(); ++i) {
    // Compares the target, not the canonical name: "#global" is a tag.
    if (input.targets[i] == global) {
      (store.*everywhere)(id);
    } else {
      (store.*inTag)(id, names[i]);
    }
  }
  return WriteResponse::difference(before, store.metadataWithID(id));
}

}  // namespace

std::string displayedPin(std::string_view pin) {
  if (pin.empty()) return std::string(global);
  if (pin == global || pin.starts_with('#')) return std::string(pin);
  return TagParser::writtenForm(pin).value_or(std::string(pin));
}

std::vector<std::string> ListPinsOp::execute(const Input& input, NoteStore& store) {
  std::optional<std::string> id;
  if (input.id || input.title)
    id = OperationNoteResolver::resolveNoteIDEvenIfLocked(input.id, input.title, store);
  std::vector<std::string> pins = store.listPins(id);
  for (std::string& pin : pins) pin = displayedPin(pin);
  return pins;
}

WriteResponse AddPinsOp::execute(const Input& input, NoteStore& store) {
  return changePins(input, store, &NoteStore::pinNote, &NoteStore::pinNoteInTag);
}

WriteResponse RemovePinsOp::execute(const Input& input, NoteStore& store) {
  return changePins(input, store, &NoteStore::unpinNote, &NoteStore::unpinNoteInTag);
}

}  // namespace tavi
