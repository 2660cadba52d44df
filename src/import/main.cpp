#include "cli/single_command.h"
#include "import/import_command.h"

int main(int argc, char** argv) {
  return tavi::runSingleCommand(ArgumentParser::commandType<tavi::import::ImportCommand>(), argc,
                                argv);
}
