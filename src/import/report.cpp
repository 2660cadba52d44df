#include "import/report.h"

#include <fmt/format.h>

#include "vault/names.h"

namespace tavi::import {
namespace {

std::string counted(std::size_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

void list(std::string& text, const std::string& heading, const std::vector<vault::LeftOut>& files) {
  if (files.empty()) return;
  text += heading + ":\n";
  for (const auto& [path, why] : files)
    text += "  " + vault::shown(path) + (why.empty() ? "" : ": " + vault::shown(why)) + "\n";
}

}  // namespace

std::string Report::text() const {
  std::string text =
      fmt::format("{} {} with {}", isDryRun ? "Would import" : "Imported",
                  counted(notes, "note", "notes"), counted(files, "attachment", "attachments"));
  if (unchanged > 0) text += fmt::format("; {} there already", unchanged);
  text += isInterrupted ? ". Interrupted: run it again to go on.\n" : ".\n";
  list(text, "Not as the notes that they became, which stay as they are", differing);
  list(text, "Left out", leftOut);
  list(text, "Not linked by any note, and left out", unlinked);
  list(text, "To look at", remarks);
  if (hidden > 0)
    text += counted(hidden, "hidden file or folder was", "hidden files or folders were") +
            " not looked at.\n";
  return text;
}

}  // namespace tavi::import
