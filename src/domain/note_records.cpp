#include "domain/note_records.h"

#include <array>

#include "domain/raw_texts.h"

namespace tavi {
namespace {

// In the order of the enumerations.
constexpr std::array<std::string_view, 3> kLocations = {"notes", "trash", "archive"};
constexpr std::array<std::string_view, 2> kPositions = {"beginning", "end"};

}  // namespace

std::string_view rawText(NoteLocation location) {
  return textOf(kLocations, location);
}

std::optional<NoteLocation> noteLocation(std::string_view rawText) {
  return valueOf<NoteLocation>(kLocations, rawText);
}

std::string_view rawText(InsertPosition position) {
  return textOf(kPositions, position);
}

std::optional<InsertPosition> insertPosition(std::string_view rawText) {
  return valueOf<InsertPosition>(kPositions, rawText);
}

}  // namespace tavi
