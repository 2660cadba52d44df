// The server keeps its connection between calls, which must not be observable: whatever happens to
// the files in between, it answers like a server that was just started.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "server_process.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavi::mcp {
namespace {

namespace fs = std::filesystem;
using support::ForeignClient;
using testing::ServerProcess;

std::string call(const std::string& tool, const std::string& arguments) {
  return R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":")" + tool +
         R"(","arguments":)" + arguments + "}}";
}
const std::string list = call("list_notes", R"({"includeContent":true})");
const std::string save = call("create_note", R"({"title":"three"})");
std::string create(const std::string& title) {
  return call("create_note", R"({"title":")" + title + "\"}");
}

class KeptDatabase : public ::testing::Test {
 protected:
  std::unique_ptr<ServerProcess> start() {
    return std::make_unique<ServerProcess>(TAVICLI_PROGRAM, home.path().string(), "/usr/bin:/bin");
  }
  fs::path database() const { return home.database(); }
  fs::path log() const { return database().string() + "-wal"; }

  /// Whether the server has the file at this path open.
  static bool holds(const ServerProcess& server, const fs::path& path) {
    const fs::path descriptors = "/proc/" + std::to_string(server.id()) + "/fd";
    for (const auto& entry : fs::directory_iterator(descriptors)) {
      std::error_code gone;
      if (fs::read_symlink(entry, gone) == path) return true;
    }
    return false;
  }

  /// Waits until the server has closed the database.
  static void awaitRest(const ServerProcess& server, const fs::path& path) {
    for (int i = 0; i < 2000 && holds(server, path); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_FALSE(holds(server, path));
  }

  support::ThrowawayHome home;
};

TEST_F(KeptDatabase, IsOpenBetweenTwoCallsAndAtRestWhenNoneComes) {
  auto server = start();
  server->ask(create("one"));
  server->ask(list);
  awaitRest(*server, database());
  EXPECT_EQ(fs::file_size(log()), 0U) << "the log is written back";
  bool kept = false;
  for (int i = 0; i < 50 && !kept; ++i) {  // on a busy machine the moment may be missed
    server->ask(list);
    server->ask(list);
    kept = holds(*server, database());
  }
  EXPECT_TRUE(kept);
  awaitRest(*server, database());
  for (int i = 0; i < 3; ++i) server->ask(create("more"));
  EXPECT_EQ(server->finish(), 0);
  EXPECT_EQ(fs::file_size(log()), 0U) << "at the end of input, too";
}

struct Event {
  const char* name;
  std::function<void(const fs::path& database, const fs::path& older)> happen;
};

void overwrite(const fs::path& path, const std::string& bytes, off_t at) {
  const int file = open(path.c_str(), O_WRONLY);
  EXPECT_EQ(pwrite(file, bytes.data(), bytes.size(), at), static_cast<ssize_t>(bytes.size()));
  close(file);
}

std::string bytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

const Event events[] = {
    {"nothing", [](const fs::path&, const fs::path&) {}},
    {"replaced by a rename",
     [](const fs::path& database, const fs::path& older) { fs::rename(older, database); }},
    {"deleted",
     [](const fs::path& database, const fs::path&) {
       for (const char* end : {"", "-wal", "-shm"}) fs::remove(database.string() + end);
     }},
    {"deleted without its log",
     [](const fs::path& database, const fs::path&) { fs::remove(database); }},
    {"in a folder that was swapped",
     [](const fs::path& database, const fs::path& older) {
       const fs::path folder = database.parent_path();
       fs::rename(folder, folder.string() + ".away");
       fs::create_directory(folder);
       fs::rename(older, database);
     }},
    {"overwritten with an older copy",
     [](const fs::path& database, const fs::path& older) {
       overwrite(database, bytesOf(older), 0);
     }},
    {"without its log",
     [](const fs::path& database, const fs::path&) { fs::remove(database.string() + "-wal"); }},
    {"unreadable",
     [](const fs::path& database, const fs::path&) { fs::permissions(database, fs::perms::none); }},
    {"in a folder that is closed",
     [](const fs::path& database, const fs::path&) {
       fs::permissions(database.parent_path(), fs::perms::none);
     }},
    {"of a newer version",
     [](const fs::path& database, const fs::path&) {
       ForeignClient(database).run("PRAGMA user_version = 99");
     }},
    {"corrupted", [](const fs::path& database,
                     const fs::path&) { overwrite(database, std::string(8192, 'x'), 4096); }},
    {"changed in one row",
     [](const fs::path& database, const fs::path&) {
       ForeignClient(database).run("UPDATE note SET text = 'theirs' WHERE id = 1");
     }},
    {"locked by the application",
     [](const fs::path& database, const fs::path&) {
       const fs::path home = database.parent_path().parent_path().parent_path().parent_path();
       const fs::path folder = home / "Library/Preferences";
       fs::create_directories(folder);
       std::ofstream(folder / "X7Q2M5R8K1.net.kelvaro.tavi.plist")
           << "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"
              "<key>applicationLockingEnabled</key><true/></dict></plist>";
     }},
    {"without files/", [](const fs::path& database,
                          const fs::path&) { fs::remove_all(database.parent_path() / "files"); }},
};

// Each event happens once right after a call that wrote, and once while the server is idle.
TEST_F(KeptDatabase, IsWhatANewServerFindsWhateverHappenedInBetween) {
  for (const Event& event : events) {
    for (const bool atRest : {false, true}) {
      SCOPED_TRACE(std::string(event.name) + (atRest ? ", at rest" : ""));
      const support::ThrowawayHome fresh;
      const auto pathOf = [&] { return fresh.database(); };
      const auto launch = [&] {
        return std::make_unique<ServerProcess>(TAVICLI_PROGRAM, fresh.path().string(),
                                               "/usr/bin:/bin");
      };
      auto first = launch();
      first->ask(create("one"));
      ASSERT_EQ(first->finish(), 0);
      const fs::path older = fresh.path() / "older";
      fs::copy_file(pathOf(), older);

      auto server = launch();
      server->ask(create("two"));
      server->ask(list);
      if (atRest) awaitRest(*server, pathOf());
      event.happen(pathOf(), older);
      const std::string answer = server->ask(list);
      EXPECT_EQ(answer, launch()->ask(list));
      if (std::string(event.name) == "nothing") {
        EXPECT_NE(answer.find("# two"), std::string::npos);
      }
      // A write, after which both servers must find the same.
      const std::string written = server->ask(save);
      EXPECT_EQ(written.find("isError") != std::string::npos,
                launch()->ask(save).find("isError") != std::string::npos)
          << written;
      EXPECT_EQ(server->ask(list), launch()->ask(list));
      fs::permissions(fresh.data(), fs::perms::owner_all);
    }
  }
}

TEST_F(KeptDatabase, IsReadWhileSomebodyHoldsTheLockAndAWriteSaysSo) {
  auto server = start();
  server->ask(create("one"));
  ForeignClient other(database());
  other.run("BEGIN IMMEDIATE; UPDATE note SET text = 'not yet'");
  EXPECT_NE(server->ask(list).find("# one"), std::string::npos);
  EXPECT_NE(server->ask(save).find("in use by another program"), std::string::npos);
  other.run("ROLLBACK");
  EXPECT_EQ(server->ask(save).find("isError"), std::string::npos);
}

}  // namespace
}  // namespace tavi::mcp
