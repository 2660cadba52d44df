#include "export/git.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <vector>

#include "platform/system/file_descriptor.h"
#include "vault/files.h"

extern char** environ;

namespace tavi::exporting {
namespace {

using platform::system::FileDescriptor;

/// The result of a git command.
struct Answer {
  int exitCode = 0;
  std::string text;  ///< standard output and standard error
};

/// Owns the file actions of posix_spawn(3).
class SpawnActions {
 public:
  SpawnActions() { posix_spawn_file_actions_init(&actions_); }
  ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  posix_spawn_file_actions_t* get() { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer{};
  while (true) {
    const auto count = platform::system::readSome(descriptor, buffer.data(), buffer.size());
    if (count <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

/// Runs git in a folder, without a shell.
class Git {
 public:
  explicit Git(std::filesystem::path folder) : folder_(std::move(folder)) {}

  Answer ask(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"git", "-C", folder_.string()});
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("git cannot be run");
    const FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    SpawnActions actions;
    posix_spawn_file_actions_addopen(actions.get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(actions.get(), writing.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(actions.get(), writing.get(), STDERR_FILENO);
    pid_t child = 0;
    if (posix_spawnp(&child, "git", actions.get(), nullptr, argv.data(), environ) != 0)
      throw std::runtime_error("git cannot be run: is it installed?");
    writing.reset();
    Answer answer{.text = readAll(reading.get())};
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    answer.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return answer;
  }

  void run(std::vector<std::string> arguments) const {
    const std::string name = arguments.front();
    const Answer answer = ask(std::move(arguments));
    if (answer.exitCode != 0) throw std::runtime_error("git " + name + " failed: " + answer.text);
  }

 private:
  std::filesystem::path folder_;
};

/// Creates a repository. Its attributes keep git on other machines from converting line breaks.
void makeRepository(const Git& git, const std::filesystem::path& folder) {
  git.run({"init", "--quiet"});
  const std::filesystem::path attributes = folder / ".gitattributes";
  if (!std::filesystem::exists(attributes)) vault::writeFile(attributes, "* -text\n");
}

}  // namespace

void commitFolder(const std::filesystem::path& folder, const std::string& message) {
  const Git git(folder);
  if (git.ask({"rev-parse", "--is-inside-work-tree"}).exitCode != 0) makeRepository(git, folder);
  git.run({"add", "--all", "--", "."});
  if (git.ask({"diff", "--cached", "--quiet", "--", "."}).exitCode == 0) return;
  std::vector<std::string> commit{"commit", "--quiet", "--message", message, "--", "."};
  if (git.ask({"config", "user.email"}).exitCode != 0) {
    commit.insert(commit.begin(),
                  {"-c", "user.name=tavi-export", "-c", "user.email=tavi-export@localhost"});
  }
  git.run(std::move(commit));
}

}  // namespace tavi::exporting
