#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vault/folder.h"

namespace tavi::import {

/// The result of an import, for the user.
struct Report {
  bool isDryRun = false;
  bool isInterrupted = false;
  std::size_t notes = 0;                  ///< new notes
  std::size_t files = 0;                  ///< their attachments
  std::size_t unchanged = 0;              ///< files whose notes exist already
  std::size_t hidden = 0;                 ///< hidden files and folders, which were skipped
  std::vector<vault::LeftOut> differing;  ///< files that differ from their existing notes
  std::vector<vault::LeftOut> leftOut;    ///< files that could not be imported
  std::vector<vault::LeftOut> unlinked;   ///< files that no note links to
  std::vector<vault::LeftOut> remarks;    ///< imported files, and what of them was not understood

  /// The report in words, several lines.
  std::string text() const;
};

}  // namespace tavi::import
