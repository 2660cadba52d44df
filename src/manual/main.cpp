// write_manual FOLDER: writes the manual's pages into the folder, which is there.

#include <cstdio>
#include <memory>
#include <string>

#include "cli/tavi_cli.h"
#include "cli/version.h"
#include "export/export_command.h"
#include "import/import_command.h"
#include "manual/manual_pages.h"

namespace {

bool write(const std::string& path, const std::string& text) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "w"),
                                                             &std::fclose);
  return file && std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
         std::fflush(file.get()) == 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 64;
  using ArgumentParser::commandType;
  for (const auto& program :
       {commandType<tavi::TaviCLI>(), commandType<tavi::import::ImportCommand>(),
        commandType<tavi::exporting::ExportCommand>()}) {
    for (const auto& [name, text] : tavi::manual::manualPages(program, tavi::versionString())) {
      const std::string path = std::string(arguments[1]) + "/" + name + ".1";
      if (write(path, text)) continue;
      std::perror(path.c_str());
      return 1;
    }
  }
}
