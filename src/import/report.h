#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vault/folder.h"

namespace tavi::import {

/// What an import did, for the person who started it.
struct Report {
  bool isDryRun = false;
  bool isInterrupted = false;
  std::size_t notes = 0;                  ///< that are new
  std::size_t files = 0;                  ///< that came along with them
  std::size_t unchanged = 0;              ///< that were there already
  std::size_t hidden = 0;                 ///< names that begin with a dot
  std::vector<vault::LeftOut> differing;  ///< from the notes that they became
  std::vector<vault::LeftOut> leftOut;    ///< files that should have become notes or attachments
  std::vector<vault::LeftOut> unlinked;   ///< files that no note links
  std::vector<vault::LeftOut> remarks;    ///< of notes that came in: what did not

  std::string text() const;
};

}  // namespace tavi::import
