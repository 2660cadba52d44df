// A long session of a client with the built program (TAVICLI_PROGRAM), from the pipe to the
// database and back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <boost/json.hpp>

#include <filesystem>
#include <fstream>

#include "server_process.h"

namespace tavi::mcp {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;
using ::testing::HasSubstr;
using testing::ServerProcess;
using ::testing::StartsWith;

class WorkingDay : public ::testing::Test {
 protected:
  WorkingDay() {
    fs::remove_all(home);
    fs::create_directories(home / "bin");
    std::ofstream(home / "bin/xdg-open") << "#!/bin/sh\necho \"$1\" > \"$HOME/opened\"\n";
    fs::permissions(home / "bin/xdg-open", fs::perms::owner_all);
  }
  ~WorkingDay() override {
    server.reset();  // first, since the server may still write
    fs::remove_all(home);
  }

  std::string path() const { return (home / "bin").string() + ":/usr/bin:/bin"; }
  std::string commandLine(std::vector<std::string> arguments, std::string_view input = "") {
    arguments.insert(arguments.begin(), program);
    return testing::outputOf(arguments, home, input);
  }

  /// The result of a tool. `$` in the arguments stands for the id of the day's note.
  json::value result(const std::string& tool, std::string arguments) {
    for (std::size_t at; (at = arguments.find('$')) != std::string::npos;)
      arguments.replace(at, 1, id);
    const json::value answer =
        json::parse(server->ask(R"({"jsonrpc":"2.0","id":)" + std::to_string(++lastID) +
                                R"(,"method":"tools/call","params":{"name":")" + tool +
                                R"(","arguments":)" + arguments + "}}"));
    EXPECT_TRUE(answer.at("id") == lastID);
    return answer.at("result");
  }
  /// The answer of a tool, after checking that both copies in its result are equal.
  std::string call(const std::string& tool, const std::string& arguments = R"({"id":"$"})") {
    const json::value all = result(tool, arguments);
    const std::string text(all.at("content").at(0).at("text").as_string());
    EXPECT_FALSE(all.as_object().contains("isError")) << tool << ": " << text;
    const json::value* structure = all.as_object().if_contains("structuredContent");
    EXPECT_TRUE(structure && json::parse(text) == *structure) << tool << ": " << all;
    return text;
  }
  std::string refusal(const std::string& tool, const std::string& arguments) {
    const json::value all = result(tool, arguments);
    EXPECT_TRUE(all.as_object().contains("isError")) << tool << ": " << all;
    return std::string(all.at("content").at(0).at("text").as_string());
  }
  /// A string in an answer, by its JSON pointer (RFC 6901).
  static std::string member(const std::string& answer, std::string_view pointer) {
    return std::string(json::parse(answer).at_pointer(pointer).as_string());
  }
  std::string text() { return member(call("read_note_content"), "/content"); }
  std::string hash() { return member(call("get_note"), "/metadata/contentHash"); }
  void create(const std::string& arguments) { id = member(call("create_note", arguments), "/id"); }

  const std::string program = TAVICLI_PROGRAM;
  const fs::path home =
      fs::path(::testing::TempDir()) / ("working-day." + std::to_string(::getpid()));
  std::unique_ptr<ServerProcess> server = std::make_unique<ServerProcess>(program, home, path());
  int lastID = 0;
  std::string id;
};

TEST_F(WorkingDay, BeginsWithAHandshakeHoweverTheClientGoesAboutIt) {
  EXPECT_THAT(server->ask(R"({"jsonrpc":"2.0","id":0,"method":"server/probe","params":{}})"),
              HasSubstr("-32601"));
  server->send("");
  const auto hello = json::parse(server->ask(
      R"({"jsonrpc":"2.0","id":"i","method":"initialize","params":{"protocolVersion":"2031-01-01",)"
      R"("capabilities":{"roots":{"listChanged":true}},"clientInfo":{"name":"c","version":"1"},)"
      R"("_meta":{"progressToken":1}}})"));
  EXPECT_TRUE(hello.at("result").at("protocolVersion") == "2025-06-18");
  server->send(R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
  server->send(R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":7}})");
  server->send(R"({"jsonrpc":"2.0","id":9,"result":{"roots":[]}})");  // an unsolicited response
  EXPECT_THAT(server->receive(), HasSubstr("-32600"));
  EXPECT_THAT(server->ask("{\"id\":1,"), HasSubstr("-32700"));
  const auto listed = json::parse(server->ask(R"({"jsonrpc":"2.0","id":2,"method":"tools/list"})"));
  EXPECT_EQ(listed.at("result").at("tools").as_array().size(), 24u);
  EXPECT_FALSE(fs::exists(home / ".local")) << "no store before the first call";
  EXPECT_EQ(server->finish(), 0);
}

TEST_F(WorkingDay, ReadsAndWritesBesideAnotherProgram) {
  create(R"({"title":"Mars","content":"dust / storms","tags":["planet","trip plan"]})");
  call("edit_note", R"({"id":"$","edits":[{"find":"dust","insertBefore":"red "}]})");
  EXPECT_EQ(text(), "# Mars\n\nred dust / storms\n\n#planet #trip plan#");
  const std::string read = hash();
  commandLine({"append", id, "--content", "Phobos"});
  EXPECT_THAT(refusal("overwrite_note", R"({"id":"$","content":"x","baseHash":")" + read + "\"}"),
              StartsWith("Note has changed since last read"));
  commandLine({"attachments", "add", id, "--filename", "map.txt"}, "here be dragons");
  EXPECT_EQ(call("read_attachment", R"({"id":"$","filename":"map.txt"})"),
            R"({"data":"aGVyZSBiZSBkcmFnb25z"})");
  EXPECT_EQ(call("open_note", R"({"id":"$","header":"a&b"})"), "{}");
  std::string url;
  std::ifstream opened(home / "opened");
  std::getline(opened, url);
  EXPECT_EQ(url, "tavi://x-callback-url/open-note?id=" + id + "&header=a%26b");
  EXPECT_EQ(server->finish(), 0);
}

TEST_F(WorkingDay, TellsOfAReplacedExecutable) {
  fs::copy_file(program, home / "tavicli");
  server = std::make_unique<ServerProcess>(home / "tavicli", home, path());
  server->ask(R"({"id":1,"method":"ping"})");
  fs::copy_file("/bin/sh", home / "new");
  fs::rename(home / "new", home / "tavicli");
  const std::string request =
      R"({"id":2,"method":"tools/call","params":{"name":"list_tags","arguments":{}}})";
  EXPECT_THAT(server->ask(request), HasSubstr("notifications\\/message"));
  EXPECT_THAT(server->receive(), HasSubstr("On-disk tavicli is newer"));
  EXPECT_THAT(server->ask(request), HasSubstr("On-disk tavicli is newer"));
}

TEST_F(WorkingDay, TellsOfALinkThatLeadsToAnotherExecutable) {
  for (const auto& [version, file] : {std::pair{"v1", program}, {"v2", std::string("/bin/sh")}}) {
    fs::create_directory(home / version);
    fs::copy_file(file, home / version / "tavicli");
  }
  fs::create_directory_symlink("v1", home / "current");
  fs::create_symlink("current/tavicli", home / "tavicli");
  server = std::make_unique<ServerProcess>(home / "tavicli", home, path());
  server->ask(R"({"id":1,"method":"ping"})");
  fs::create_directory_symlink("v2", home / "next");
  fs::rename(home / "next", home / "current");
  EXPECT_THAT(
      server->ask(R"({"id":2,"method":"tools/call","params":{"name":"list_tags","arguments":{}}})"),
      HasSubstr("notifications\\/message"));
}

TEST_F(WorkingDay, SaysNothingOfACopyOfTheSameBuild) {
  fs::copy_file(program, home / "tavicli");
  server = std::make_unique<ServerProcess>(home / "tavicli", home, path());
  server->ask(R"({"id":1,"method":"ping"})");
  fs::copy_file(program, home / "new");
  fs::rename(home / "new", home / "tavicli");
  EXPECT_EQ(call("list_tags", "{}"), R"({"tags":[]})");
}

}  // namespace
}  // namespace tavi::mcp
