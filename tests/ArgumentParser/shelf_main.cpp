// The shelf as a program that shells can complete.

#include "shelf.h"

int main(int count, char** arguments) {
  const auto root = ArgumentParser::commandType<shelf::Shelf>();
  try {
    ArgumentParser::parseAsRoot(root, {arguments + 1, arguments + count})->run();
  } catch (...) {
    ArgumentParser::exitWithError(root, std::current_exception());
  }
}
