// write_manual FOLDER DATE: writes the manual pages into the subfolders man1 and man7 of FOLDER,
// which must exist. DATE is the date of the release, "2026-11-25".

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/tavi_cli.h"
#include "cli/version.h"
#include "export/export_command.h"
#include "import/import_command.h"
#include "manual/manual_pages.h"
#include "manual/search_terms_page.h"

namespace {

bool write(const std::string& path, const std::string& text) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "w"),
                                                             &std::fclose);
  return file && std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
         std::fflush(file.get()) == 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 64;
  const std::string folder = arguments[1];
  const tavi::manual::Release release{.version = tavi::versionString(), .date = arguments[2]};
  using ArgumentParser::commandType;
  std::vector<tavi::manual::ManualPage> pages{tavi::manual::searchTermsPage(release)};
  for (const auto& program :
       {commandType<tavi::TaviCLI>(), commandType<tavi::import::ImportCommand>(),
        commandType<tavi::exporting::ExportCommand>()}) {
    for (auto& page : tavi::manual::manualPages(program, release)) pages.push_back(std::move(page));
  }
  for (const auto& page : pages) {
    const std::string path = folder + "/" + page.path();
    if (write(path, page.text)) continue;
    std::perror(path.c_str());
    return 1;
  }
}
