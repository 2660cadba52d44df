// round_trips REQUESTS ROUNDS PAUSE -- COMMAND... [-- COMMAND...]...: starts each command once, as
// a server that answers each line with a line. Sends the lines of the file REQUESTS, ROUNDS times,
// and measures the time from before each request to after its answer. The servers take turns. Waits
// for PAUSE to 2 * PAUSE milliseconds before each round, a different time in each.
// Prints one line per command: its maximum memory in KiB, then each time in nanoseconds.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <thread>

#include "child.h"

int main(int, char** arguments) {
  std::ifstream file(arguments[1]);
  std::vector<std::string> requests;
  for (std::string line; std::getline(file, line);) requests.push_back(line + '\n');
  const long rounds = std::strtol(arguments[2], nullptr, 10);
  const long pause = std::strtol(arguments[3], nullptr, 10);
  auto commands = measure::commands(arguments + 4);
  measure::raisePriority();

  std::vector<std::unique_ptr<measure::Child>> servers;
  for (auto& command : commands) servers.push_back(std::make_unique<measure::Child>(command, true));
  std::vector<std::vector<std::int64_t>> times(commands.size());
  for (long round = 0; round < rounds; ++round) {
    if (pause > 0) {
      constexpr long step = 7;  // shares no factor with most pauses
      std::this_thread::sleep_for(std::chrono::milliseconds(pause + round * step % pause));
    }
    for (const std::string& request : requests) {
      for (std::size_t i = 0; i < servers.size(); ++i) {
        const std::int64_t start = measure::nanoseconds();
        servers[i]->send(request);
        servers[i]->readLine();
        times[i].push_back(measure::nanoseconds() - start);
      }
    }
  }
  for (std::size_t i = 0; i < servers.size(); ++i) {
    std::printf("%ld", servers[i]->finish());
    for (const std::int64_t time : times[i]) std::printf(" %lld", static_cast<long long>(time));
    std::printf("\n");
  }
}
