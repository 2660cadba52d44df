#include "domain/note_records.h"

#include <array>

namespace tavi {
namespace {

// In the order of the enumerations.
constexpr std::array<std::string_view, 3> kLocations = {"notes", "trash", "archive"};
constexpr std::array<std::string_view, 2> kPositions = {"beginning", "end"};

template <class Enum, std::size_t size>
std::optional<Enum> valueOf(const std::array<std::string_view, size>& texts,
                            std::string_view text) {
  for (std::size_t i = 0; i < size; ++i) {
    if (texts[i] == text) return static_cast<Enum>(i);
  }
  return std::nullopt;
}

}  // namespace

std::string_view rawText(NoteLocation location) {
  return kLocations[static_cast<std::size_t>(location)];
}

std::optional<NoteLocation> noteLocation(std::string_view rawText) {
  return valueOf<NoteLocation>(kLocations, rawText);
}

std::string_view rawText(InsertPosition position) {
  return kPositions[static_cast<std::size_t>(position)];
}

std::optional<InsertPosition> insertPosition(std::string_view rawText) {
  return valueOf<InsertPosition>(kPositions, rawText);
}

}  // namespace tavi
