#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <cstdlib>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "docs/page.h"
#include "support/program.h"
#include "support/throwaway_home.h"

namespace {

namespace json = boost::json;

const std::string kList = R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})"
                          "\n";

/// The object with the key "command" in a client's configuration, at any depth.
const json::object* serverIn(const json::value& configuration) {
  const json::object* object = configuration.if_object();
  if (object == nullptr || object->contains("command")) return object;
  for (const auto& member : *object)
    if (const json::object* found = serverIn(member.value())) return found;
  return nullptr;
}

json::value toolsOf(const json::object& server) {
  std::vector<std::string> arguments{server.at("command").as_string().c_str()};
  for (const json::value& argument : server.at("args").as_array())
    arguments.emplace_back(argument.as_string());
  const auto result = support::runProgram(arguments, kList, "/usr/bin/env");
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  return json::parse(result.output).at("result").at("tools");
}

class McpPage : public testing::Test {
 protected:
  McpPage() { setenv("PATH", (PROGRAMS ":" + path).c_str(), 1); }
  ~McpPage() override { setenv("PATH", path.c_str(), 1); }

  const std::string path = std::getenv("PATH");
  const support::ThrowawayHome home;
  const std::vector<docs::Block> blocks = docs::blocksOf(DOCS "/mcp.md");
};

TEST_F(McpPage, HasBlocksThatStartTheServer) {
  int configurations = 0;
  bool filters = false;
  for (const docs::Block& block : blocks) {
    if (block.kind != "json") continue;
    SCOPED_TRACE(block.line);
    const json::value configuration = json::parse(block.text);
    const json::object* server = serverIn(configuration);
    ASSERT_NE(server, nullptr);
    const json::value tools = toolsOf(*server);
    EXPECT_EQ(tools.as_array().size(), 24U);
    ++configurations;
    if (server->at("command") != "sh") continue;
    filters = true;
    for (const json::value& tool : tools.as_array()) {
      for (const auto& field : tool.at("inputSchema").at("properties").as_object()) {
        const json::object& schema = field.value().as_object();
        EXPECT_TRUE(schema.at("type") != "array" || schema.contains("items")) << tool.at("name");
      }
    }
  }
  EXPECT_GE(configurations, 4);
  EXPECT_TRUE(filters);
}

TEST_F(McpPage, TellsTheModelOfToolsAndArgumentsThatThereAre) {
  const auto prompt = std::find_if(blocks.begin(), blocks.end(),
                                   [](const docs::Block& block) { return block.kind == "prompt"; });
  ASSERT_NE(prompt, blocks.end());
  const json::value server = json::parse(R"({"command":"tavicli","args":["mcp-server"]})");
  std::set<std::string> known;
  const json::value tools = toolsOf(server.as_object());
  for (const json::value& tool : tools.as_array()) {
    known.emplace(tool.at("name").as_string());
    for (const auto& field : tool.at("inputSchema").at("properties").as_object())
      known.emplace(field.key());
  }
  const std::regex name("[a-z]+_[a-z_]+|[a-z]+[A-Z][a-zA-Z]*");
  for (std::sregex_iterator at(prompt->text.begin(), prompt->text.end(), name), end; at != end;
       ++at)
    EXPECT_TRUE(known.contains(at->str())) << at->str();
}

}  // namespace
