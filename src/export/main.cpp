#include "cli/single_command.h"
#include "export/export_command.h"

int main(int argc, char** argv) {
  return tavi::runSingleCommand(ArgumentParser::commandType<tavi::exporting::ExportCommand>(), argc,
                                argv);
}
