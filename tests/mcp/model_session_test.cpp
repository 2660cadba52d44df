// A model's session of forty calls with typical mistakes, with the built program.
#include <gtest/gtest.h>
#include <unistd.h>
#include <boost/json.hpp>

#include <filesystem>
#include <fstream>
#include <string>

#include "server_process.h"

namespace tavi::mcp {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

void replaceAll(std::string& text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
    text.replace(at, what.size(), by);
}

/// Stores the value of the last `"key":"value"` in an answer, if there is one.
void keepLast(std::string& value, const std::string& answer, const std::string& key) {
  const std::string before = "\"" + key + "\":\"";
  const std::size_t at = answer.rfind(before);
  if (at == std::string::npos) return;
  const std::size_t begin = at + before.size();
  value = answer.substr(begin, answer.find('"', begin) - begin);
}

TEST(ModelSession, IsLedOnByEveryRefusalAndLosesNothing) {
  const fs::path home = fs::path(::testing::TempDir()) / ("model." + std::to_string(::getpid()));
  fs::create_directories(home);
  {
    testing::ServerProcess server(TAVICLI_PROGRAM, home, "/usr/bin:/bin");
    std::ifstream session(MODEL_SESSION);
    std::string id, hash;
    int calls = 0;
    for (std::string line; std::getline(session, line);) {
      if (line.empty() || line.starts_with('#')) continue;
      const std::size_t blank = line.find(' ');
      const std::size_t arrow = line.rfind(" => ");
      std::string arguments = line.substr(blank + 1, arrow - blank - 1);
      replaceAll(arguments, "$ID", id);
      replaceAll(arguments, "$HASH", hash);
      std::string expected = line.substr(arrow + 4);
      const bool isRefused = expected.starts_with("! ");
      if (isRefused) expected.erase(0, 2);
      const json::value answer =
          json::parse(server.ask(R"({"jsonrpc":"2.0","id":)" + std::to_string(++calls) +
                                 R"(,"method":"tools/call","params":{"name":")" +
                                 line.substr(0, blank) + R"(","arguments":)" + arguments + "}}"));
      const json::value* error = answer.as_object().if_contains("error");
      const json::value& result = error != nullptr ? *error : answer.at("result");
      const std::string text(error != nullptr ? result.at("message").as_string()
                                              : result.at("content").at(0).at("text").as_string());
      const bool wasRefused = error != nullptr || result.as_object().contains("isError");
      EXPECT_EQ(wasRefused, isRefused) << line << "\n" << text;
      EXPECT_NE(text.find(expected), std::string::npos) << line << "\n" << text;
      keepLast(id, text, "id");
      keepLast(hash, text, "contentHash");
    }
    EXPECT_GE(calls, 40);
  }
  fs::remove_all(home);
}

}  // namespace
}  // namespace tavi::mcp
