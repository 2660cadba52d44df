// Records the calls that a command makes on files, and reconstructs the disk as a power cut at any
// point would leave it: writes that were not synced are lost, or some of them are. What the program
// had reported as done must still be there.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/foreign_client.h"
#include "support/program.h"
#include "support/throwaway_home.h"

namespace {

namespace fs = std::filesystem;
using support::runProgram;

struct Call {
  char operation;  ///< see record_calls.c
  std::size_t offset;
  std::string path, bytes;
};

std::vector<Call> readRecord(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<Call> calls;
  char operation = 0;
  std::size_t offset = 0, size = 0, pathLength = 0;
  while (file >> operation >> offset >> size >> pathLength) {
    Call call{operation, offset, std::string(pathLength, '\0'), std::string(size, '\0')};
    file.get();
    file.read(call.path.data(), static_cast<std::streamsize>(pathLength));
    file.get();
    file.read(call.bytes.data(), static_cast<std::streamsize>(size));
    calls.push_back(std::move(call));
  }
  return calls;
}

/// A disk and its cache. The bytes of a file reach the disk when the file is synced, its name when
/// its folder is synced.
class Disk {
 public:
  explicit Disk(const fs::path& folder) {
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      if (!entry.is_regular_file()) continue;
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string bytes{std::istreambuf_iterator<char>(file), {}};
      auto kept = std::make_shared<File>(File{bytes, {}});
      names_[entry.path()] = namesOnDisk_[entry.path()] = kept;
    }
  }

  void apply(const Call& call) {
    switch (call.operation) {
      case 'C':
        names_[call.path] = std::make_shared<File>();
        break;
      case 'W':
      case 'T':
        if (const auto file = names_.find(call.path); file != names_.end()) {
          file->second->unsynced.push_back(call);
        }
        break;
      case 'S':
        sync(call.path);
        break;
      case 'R':
        names_[call.bytes] = names_[call.path];
        names_.erase(call.path);
        break;
      case 'U':
        names_.erase(call.path);
        break;
      default:
        break;
    }
  }

  /// Writes the state that a power cut would leave now into another folder. With `random`, each
  /// write that is not synced is randomly lost or not.
  void leave(const fs::path& from, const fs::path& to, std::mt19937* random) const {
    for (const auto& [path, file] : namesOnDisk_) {
      if (path.ends_with("-shm")) continue;  // the next process to open the database rebuilds it
      File left = *file;
      if (random != nullptr) {
        std::erase_if(left.unsynced, [&](const Call&) { return (*random)() % 2 == 0; });
        left.sync();
      }
      const fs::path target = to / fs::relative(path, from);
      fs::create_directories(target.parent_path());
      std::ofstream(target, std::ios::binary) << left.synced;
    }
  }

 private:
  struct File {
    std::string synced;
    std::vector<Call> unsynced;

    void sync() {
      for (const Call& call : unsynced) {
        const std::size_t end = call.offset + call.bytes.size();
        if (call.operation == 'T' || synced.size() < end) synced.resize(end, '\0');
        synced.replace(call.offset, call.bytes.size(), call.bytes);
      }
      unsynced.clear();
    }
  };
  using Names = std::map<std::string, std::shared_ptr<File>>;

  void sync(const std::string& path) {
    if (const auto file = names_.find(path); file != names_.end()) return file->second->sync();
    const auto within = [&](const std::string& name) {
      return fs::path(name).parent_path() == path;
    };
    std::erase_if(namesOnDisk_, [&](const auto& entry) { return within(entry.first); });
    for (const auto& [name, file] : names_) {
      if (within(name)) namesOnDisk_[name] = file;
    }
  }

  Names names_, namesOnDisk_;
};

class PowerLoss : public testing::Test {
 protected:
  void SetUp() override {
    const auto made = runProgram({"create", "--fields", "id"}, "# Kept #tag\n\nold text");
    id = made.output.substr(0, made.output.find('\n'));
    ASSERT_EQ(runProgram({"attachments", "add", id, "-f", "old.bin"}, "old bytes").exitCode, 0);
  }

  std::vector<Call> recorded(const std::vector<std::string>& command) {
    std::ofstream(home.path() / "record").flush();
    setenv("LD_PRELOAD", RECORD_CALLS_LIBRARY, 1);
    setenv("RECORD_TO", (home.path() / "record").c_str(), 1);
    setenv("RECORD_UNDER", home.path().c_str(), 1);
    const auto result = runProgram(command, "new bytes", SHARED_PROGRAM);
    for (const char* name : {"LD_PRELOAD", "RECORD_UNDER"}) unsetenv(name);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return readRecord(home.path() / "record");
  }

  /// The notes and their files as the program shows them, from a copy that it may change.
  std::string state(const fs::path& data) {
    const fs::path there = home.path() / "looked at";
    fs::remove_all(there);
    fs::create_directories(there);
    fs::copy(data, there / "tavi", fs::copy_options::recursive);
    setenv("XDG_DATA_HOME", there.c_str(), 1);
    std::string result;
    const auto add = [&](const std::vector<std::string>& command) {
      const auto shown = runProgram(command);
      result += shown.output + shown.errors;
    };
    add({"list", "-l", "all", "--fields", "title,location,tags,attachments", "--sort", "title"});
    add({"cat", id});
    for (const char* name : {"old.bin", "new.bin"}) add({"attachments", "save", id, "-f", name});
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(support::ForeignClient(there / "tavi/tavi.sqlite").value("PRAGMA integrity_check"),
              "ok");
    return result;
  }

  std::vector<std::vector<std::string>> commands() const {
    return {
        {"append", id, "--content", "appended"},
        {"create", "Another"},
        {"edit", id, "--find", "old text", "--replace", "new text"},
        {"tags", "rename", "tag", "other"},
        {"attachments", "add", id, "-f", "new.bin"},
        {"attachments", "delete", id, "-f", "old.bin"},
        {"trash", id},
    };
  }

  support::ThrowawayHome home;
  std::string id;
};

TEST_F(PowerLoss, LeavesTheStateBeforeOrAfterAndKeepsWhatWasAnswered) {
  Disk disk(home.data());
  std::mt19937 random(3);
  for (const auto& command : commands()) {
    SCOPED_TRACE(command[0] + " " + command[1]);
    const std::string before = state(home.data());
    const std::vector<Call> calls = recorded(command);
    const std::string after = state(home.data());
    ASSERT_NE(before, after);
    bool answered = false;
    const auto cut = [&](std::mt19937* some) {
      const fs::path left = home.path() / "left";
      fs::remove_all(left);
      disk.leave(home.data(), left, some);
      const std::string now = state(left);
      EXPECT_TRUE(now == after || (now == before && !answered)) << now;
    };
    for (const Call& call : calls) {
      if (call.operation == 'S' || call.operation == 'U' || call.operation == 'A') cut(&random);
      disk.apply(call);
      answered = answered || call.operation == 'A';
      if (call.operation == 'S') cut(nullptr);
    }
    answered = true;
    cut(nullptr);
    cut(&random);
  }
}

// Bytes are synced before their folder, both before the row that names them, and that before the
// answer.
TEST_F(PowerLoss, SyncsInOrderBeforeTheAnswer) {
  const auto syncs = [&](const std::vector<std::string>& command) {
    std::string order;
    const auto step = [&](const std::string& name) {
      if (!order.ends_with(name + " ")) order += name + " ";
    };
    for (const Call& call : recorded(command)) {
      const fs::path path = call.path;
      if (call.operation == 'A') step("answer");
      if (call.operation != 'S') continue;
      if (path.extension() == ".sqlite-wal") step("log");
      if (path == home.database()) step("database");
      if (path.parent_path().filename() == "staged") step("bytes");
      if (path.filename() == "staged") step("staged");
      if (path.filename() == "files") step("files");
    }
    return order;
  };
  EXPECT_EQ(syncs({"create", "Another"}), "log answer log database ");
  EXPECT_EQ(syncs({"append", id, "--content", "x"}), "log database ");
  EXPECT_EQ(syncs({"attachments", "add", id, "-f", "new.bin"}), "bytes staged files log database ");
  // First the log, in which the row is deleted; then the folders of the file; then its name is
  // removed.
  EXPECT_EQ(syncs({"attachments", "delete", id, "-f", "new.bin"}),
            "log files staged log database ");
  support::ForeignClient other(home.database());
  other.run("PRAGMA synchronous = OFF; DELETE FROM file");  // what another program has not synced
  EXPECT_NE(syncs({"list"}).find("log files staged log"), std::string::npos);
}

}  // namespace
