#pragma once

#include <fstream>
#include <string>
#include <vector>

namespace docs {

/// A fenced block of a page.
struct Block {
  std::string kind;  ///< the info string of the fence: "sh", "output"
  std::string text;
  int line = 0;  ///< of its fence
};

inline std::vector<Block> blocksOf(const std::string& page) {
  std::ifstream file(page);
  std::vector<Block> blocks;
  bool isInside = false;
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (line.starts_with("```")) {
      if (!isInside) blocks.push_back({line.substr(3), "", number});
      isInside = !isInside;
    } else if (isInside) {
      blocks.back().text += line + "\n";
    }
  }
  return blocks;
}

}  // namespace docs
