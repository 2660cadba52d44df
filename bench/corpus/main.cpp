// Writes a corpus of made-up notes, the same for the same arguments.
//
//   bench_corpus markdown NOTES FOLDER      Markdown files, and facts.json on stdout
//   bench_corpus rows NOTES DATABASE        rows for a database that the program has made
//   bench_corpus floor NOTES FILE           the file that the floors read
//
// NOTES is their number, or "huge" for one note of 10 MB.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "writers.h"

namespace {

constexpr std::size_t hugeBytes = 10'000'000;

void printFacts(const corpus::Notes& notes, std::size_t huge, std::size_t bytes) {
  const corpus::Note sample = huge > 0 ? notes.hugeNote(huge) : notes.note(notes.count() / 2);
  std::printf(
      "{\"notes\": %zu, \"textBytes\": %zu, \"tags\": %zu, \"sample\": \"%s\", \"rareWord\": "
      "\"%s\", \"commonWord\": \"%s\", \"twoLetterWord\": \"%s\", \"listedTag\": \"%s\"}\n",
      huge > 0 ? 1 : notes.count(), bytes, notes.tags().names().size(),
      sample.uniqueIdentifier.c_str(), corpus::rareWord.data(), corpus::commonWord.data(),
      corpus::twoLetterWord.data(), corpus::listedTag.data());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("Usage: bench_corpus markdown|rows|floor NOTES|huge PATH\n", stderr);
    return 64;
  }
  const std::string_view form = argv[1];
  const std::size_t huge = std::string_view(argv[2]) == "huge" ? hugeBytes : 0;
  const corpus::Notes notes(huge > 0 ? 1 : std::strtoul(argv[2], nullptr, 10));
  try {
    if (form == "markdown") printFacts(notes, huge, corpus::writeMarkdown(notes, huge, argv[3]));
    if (form == "rows") corpus::writeRows(notes, huge, argv[3]);
    if (form == "floor") corpus::writeFloorFile(notes, huge, argv[3]);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
