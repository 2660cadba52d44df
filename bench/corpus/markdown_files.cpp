#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "writers.h"

namespace corpus {

std::size_t writeMarkdown(const Notes& notes, std::size_t hugeNoteBytes,
                          const std::string& folder) {
  std::size_t number = 0;
  std::size_t bytes = 0;
  forEachNote(notes, hugeNoteBytes, [&](const Note& note) {
    const std::filesystem::path inner = folder + "/" + std::to_string(number / 1000);
    if (number % 1000 == 0) std::filesystem::create_directories(inner);
    std::ofstream file(inner / (std::to_string(number) + ".md"), std::ios::binary);
    file << note.text;
    if (!file.flush()) throw std::runtime_error("Could not write " + inner.string());
    bytes += note.text.size();
    ++number;
  });
  return bytes;
}

}  // namespace corpus
