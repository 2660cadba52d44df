// pairs ROUNDS -- COMMAND... [-- COMMAND...]...: measures the time of whole processes, from before
// their start to after their end, with their output read from a pipe. The commands take turns, so
// that disturbances affect all of them. Prints one line per command: its maximum memory in KiB,
// then each time in nanoseconds.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "child.h"

int main(int, char** arguments) {
  const long rounds = std::strtol(arguments[1], nullptr, 10);
  auto commands = measure::commands(arguments + 2);
  measure::raisePriority();
  std::vector<std::vector<std::int64_t>> times(commands.size());
  std::vector<long> memory(commands.size());
  for (long round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < commands.size(); ++i) {
      const std::int64_t start = measure::nanoseconds();
      measure::Child child(commands[i], false);
      child.readAll();
      memory[i] = std::max(memory[i], child.finish());
      times[i].push_back(measure::nanoseconds() - start);
    }
  }
  for (std::size_t i = 0; i < commands.size(); ++i) {
    std::printf("%ld", memory[i]);
    for (const std::int64_t time : times[i]) std::printf(" %lld", static_cast<long long>(time));
    std::printf("\n");
  }
}
