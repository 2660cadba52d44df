#include "mcp/server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>
#include <thread>

#include "domain/store_errors.h"
#include "pipe.h"
#include "support/throwaway_home.h"
#include "support/watched_store.h"

namespace tavi::mcp {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::Pipe;

const JSONValue& anySchema() {
  static const JSONValue schema(JSONValue::Object{{"type", "object"}});
  return schema;
}

MCPTool tool(std::string_view name, ResultWriter answer) {
  return {.metadata = {.name = name,
                       .title = "T/i",
                       .abstract = "",
                       .description = "D",
                       .readOnlyHint = name != "change",
                       .idempotentHint = true},
          .inputSchema = anySchema,
          .call = [answer](const auto&, NoteStore&) { return answer; }};
}

/// A tool that fails in its operation.
MCPTool refusingTool() {
  MCPTool refusing = tool("refuse", {});
  refusing.call = [](const auto&, NoteStore&) -> ResultWriter {
    throw NoteStoreError::hashMismatch();
  };
  return refusing;
}

/// A tool that answers with `{"rows":[...]}`, and calls `visit` before each of its rows.
MCPTool longTool(int rows, std::size_t rowSize, std::function<void(int)> visit) {
  return tool("long", [=](JSONWriter& writer) {
    writer.beginObject();
    writer.key("rows");
    writer.beginArray();
    for (int i = 0; i < rows; ++i) {
      visit(i);
      writer.string(std::string(rowSize, 'x'));
    }
    writer.endArray();
    writer.endObject();
  });
}

/// A server with a few test tools; records the calls to its environment in order.
class Server : public ::testing::Test {
 protected:
  /// The lines written for one line of input.
  std::string answerTo(std::string_view line) {
    server.handleLine(line);
    return output.readAvailable();
  }
  std::string call(std::string_view name) {
    return answerTo(R"({"id":1,"method":"tools/call","params":{"name":")" + std::string(name) +
                    "\"}}");
  }

  support::ThrowawayHome home{support::ThrowawayHome::On::memory};
  Pipe output;
  std::vector<std::string> events;
  StalenessTracker::Clock::time_point now{};
  BinaryFingerprint onDisk{.path = "/usr/bin/tavicli", .mtime = {}, .size = 1, .uuid = {1}};
  std::function<std::unique_ptr<NoteStore>()> open = [this] {
    events.push_back("open");
    return support::watchedStore(home.data(), [this] { events.push_back("close"); });
  };
  ServerEnvironment environment{.createStore = [this] { return open(); },
                                .postRefresh = [this] { events.push_back("refresh"); },
                                .version = "1.4 (320)",
                                .output = output.writer(),
                                .fingerprint = [this] { return onDisk; },
                                .now = [this] { return now; }};
  std::vector<MCPTool> tools{
      tool("look", [](JSONWriter& w) { w.raw(R"({"a":"b\/\"c"})"); }),
      tool("change", [](JSONWriter& w) { w.raw("{}"); }),
      tool("list", [](JSONWriter& w) { w.raw("[]"); }),
      refusingTool(),
      longTool(3, LineSink::heldInMemory, [](int) {}),
  };
  MCPServer server{environment, tools, {onDisk, environment.fingerprint}};
};

TEST_F(Server, AnswersEachKindOfLine) {
  const std::string tooling =
      R"({"annotations":{"destructiveHint":false,"idempotentHint":true,"readOnlyHint":true,)"
      R"("title":"T\/i"},"description":"D","inputSchema":{"type":"object"},"name":"look",)"
      R"("title":"T\/i"})";
  const std::pair<std::string_view, std::string> table[] = {
      {"", ""},
      {" \t ", ""},
      {R"({"method":"ping"})", ""},
      {R"({"id":1,"method":"ping"})", R"({"id":1,"jsonrpc":"2.0","result":{}})"},
      {R"({"id":null,"method":"ping"})", R"({"id":null,"jsonrpc":"2.0","result":{}})"},
      {R"({"id":1,"method":"notifications/initialized"})",
       R"({"id":1,"jsonrpc":"2.0","result":{}})"},
      {R"({"method":"notifications/initialized"})", ""},
      {R"({"id":"a","method":"initialize","params":{"protocolVersion":"2030-01-01"}})",
       R"({"id":"a","jsonrpc":"2.0","result":{"capabilities":{"tools":{}},"protocolVersion":)"
       R"_("2025-06-18","serverInfo":{"name":"tavicli","version":"1.4 (320)"}}})_"},
      {"[]", R"({"error":{"code":-32700,"message":"invalid JSON"},"id":null,"jsonrpc":"2.0"})"},
      {R"({"id":1})",
       R"({"error":{"code":-32600,"message":"missing method"},"id":null,"jsonrpc":"2.0"})"},
      {R"({"id":2,"method":"nul\u0000x"})",
       R"({"error":{"code":-32601,"message":"method not found: nul\u0000x"},"id":2,"jsonrpc":"2.0"})"},
      {R"({"id":2,"method":"server/discover"})",
       R"({"error":{"code":-32601,"message":"method not found: server\/discover"},"id":2,)"
       R"("jsonrpc":"2.0"})"},
      {R"({"id":2,"method":"Ping"})",
       R"({"error":{"code":-32601,"message":"method not found: Ping"},"id":2,"jsonrpc":"2.0"})"},
      {R"({"method":"notifications/cancelled"})", ""},
      {R"({"id":3,"method":"tools/call"})",
       R"({"error":{"code":-32602,"message":"params required"},"id":3,"jsonrpc":"2.0"})"},
      {R"({"id":3,"method":"tools/call","params":[]})",
       R"({"error":{"code":-32602,"message":"params required"},"id":3,"jsonrpc":"2.0"})"},
      {R"({"id":3,"method":"tools/call","params":{}})",
       R"({"error":{"code":-32602,"message":"tool name required"},"id":3,"jsonrpc":"2.0"})"},
      {R"({"id":3,"method":"tools/call","params":{"name":7}})",
       R"({"error":{"code":-32602,"message":"tool name required"},"id":3,"jsonrpc":"2.0"})"},
      {R"({"id":3,"method":"tools/call","params":{"name":"Look"}})",
       R"({"error":{"code":-32602,"message":"unknown tool: Look"},"id":3,"jsonrpc":"2.0"})"},
      {R"({"id":3,"method":"tools/call","params":{"name":"look","arguments":{"a":[1e400]}}})",
       R"({"error":{"code":-32602,"message":"arguments not encodable as JSON"},"id":3,)"
       R"("jsonrpc":"2.0"})"},
      {R"({"method":"tools/call","params":{}})", ""},
  };
  for (const auto& [line, expected] : table)
    EXPECT_EQ(answerTo(line), expected.empty() ? "" : expected + "\n") << line;
  EXPECT_THAT(answerTo(R"({"id":1,"method":"tools/list"})"),
              ::testing::StartsWith(R"({"id":1,"jsonrpc":"2.0","result":{"tools":[)" + tooling));
  EXPECT_THAT(answerTo("{\"id\":"),
              ::testing::MatchesRegex(
                  R"(\{"error":\{"code":-32700,"message":".+"\},"id":null,"jsonrpc":"2.0"\}.)"));
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(Server, TurnsFailuresOfToolAndStoreIntoResults) {
  EXPECT_EQ(call("refuse"),
            R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"Note has changed since last )"
            "read \u2014 read again before writing"
            R"(","type":"text"}],"isError":true}})"
            "\n");
  EXPECT_EQ(call("list"), R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":)"
                          R"("internal error: tool \"list\" returned non-object JSON",)"
                          R"("type":"text"}],"isError":true}})"
                          "\n");
  open = []() -> std::unique_ptr<NoteStore> { throw std::runtime_error("disk/full"); };
  EXPECT_EQ(call("look"), R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":)"
                          R"("disk\/full","type":"text"}],"isError":true}})"
                          "\n");
  open = []() -> std::unique_ptr<NoteStore> { throw std::bad_alloc(); };
  EXPECT_THAT(call("look"), ::testing::HasSubstr(R"("There is not enough memory")"));
}

TEST_F(Server, OpensAStoreForEachCallAndSignalsAfterSuccessfulWritesOnly) {
  call("look");
  EXPECT_THAT(events, ElementsAre("open", "close"));
  events.clear();
  call("change");
  EXPECT_THAT(events, ElementsAre("open", "refresh", "close"));
  events.clear();
  call("refuse");
  EXPECT_THAT(events, ElementsAre("open", "close"));
}

TEST_F(Server, CarriesANotificationOutInSilence) {
  EXPECT_EQ(answerTo(R"({"method":"tools/call","params":{"name":"change"}})"), "");
  EXPECT_EQ(answerTo(R"({"method":"tools/call","params":{"name":"refuse"}})"), "");
  EXPECT_THAT(events, ElementsAre("open", "refresh", "close", "open", "close"));
}

TEST_F(Server, WarnsOnceWhenStaleAndMarksEveryResultFromThenOn) {
  const std::string warning(kStaleWarning);
  const std::string marker = R"(,{"text":")" + warning + R"(","type":"text"}])";
  EXPECT_THAT(call("look"), ::testing::Not(::testing::HasSubstr("tavicli")));
  onDisk.size = 2;
  onDisk.uuid = {2};
  now += 2s;
  // A call that fails for another reason also detects the new build.
  EXPECT_EQ(answerTo(R"({"id":1,"method":"tools/call"})"),
            R"({"jsonrpc":"2.0","method":"notifications\/message","params":{"data":")" + warning +
                R"(","level":"warning","logger":"tavicli"}})"
                "\n"
                R"({"error":{"code":-32602,"message":"params required"},"id":1,"jsonrpc":"2.0"})"
                "\n");
  for (const char* name : {"look", "refuse", "list"}) {
    const std::string answer = call(name);
    EXPECT_THAT(answer, ::testing::StartsWith(R"({"id":1)")) << name;
    EXPECT_THAT(answer, ::testing::HasSubstr(marker)) << name;
  }
}

/// Answers that are longer than the pipe's buffer.
class LongAnswers : public Server {
 protected:
  std::string received(const MCPTool& long_) {
    Pipe pipe;
    std::string all;
    {
      std::jthread client([&] { all = pipe.readAll(); });
      environment.output = pipe.writer();
      MCPServer(environment, {long_}, {{}, {}})
          .handleLine(R"({"id":1,"method":"tools/call","params":{"name":"long"}})");
      pipe.closeWriter();
    }
    return all;
  }
};

TEST_F(LongAnswers, AreWrittenWhileTheyAreReadAndTheStoreIsOpen) {
  const std::string row(100'000, 'x');
  std::string rows;
  for (int i = 0; i < 100; ++i) rows += (i > 0 ? ",\"" : "\"") + row + "\"";
  std::string text = R"({\"rows\":[)" + rows + "]}";
  for (std::size_t at = 11; (at = text.find('"', at)) != std::string::npos; at += 2)
    text.insert(at, "\\");
  std::size_t passes = 0;
  const std::string all = received(longTool(100, row.size(), [&](int i) {
    EXPECT_EQ(events.back(), "open");
    passes += i == 0;
  }));
  EXPECT_TRUE(all == R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":")" + text +
                         R"(","type":"text"}],"structuredContent":{"rows":[)" + rows + "]}}}\n")
      << all.substr(0, 200);
  EXPECT_EQ(passes, 2u);
  EXPECT_EQ(events.back(), "close");
}

TEST_F(LongAnswers, ThatFailAnywhereAreToolFailures) {
  const auto failAt = [](int at) {
    return longTool(at + 1, LineSink::heldInMemory / 8, [=](int i) {
      if (i == at) throw NoteStoreError::storeUnavailable("The disk is gone");
    });
  };
  const std::string failure =
      R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"The disk is gone","type":"text"}],)"
      R"("isError":true}})"
      "\n";
  EXPECT_EQ(received(failAt(0)), failure);
  EXPECT_EQ(received(failAt(6)), failure);
  EXPECT_EQ(received(failAt(29)), failure);
}

// runServer with the real tools

class RunServer : public Server {
 protected:
  std::string conversation(std::string_view requests) {
    Pipe input;
    input.write(requests);
    input.closeWriter();
    environment.input = input.reader();
    runServer(environment);
    return output.readAvailable();
  }
};

TEST_F(RunServer, AnswersInOrderUntilTheEndOfInput) {
  EXPECT_EQ(
      conversation("{\"id\":1,\"method\":\"ping\"}\r\n\n{\"id\":2,\"method\":\"x\xff\"}\n"
                   "{\"id\":3,\"method\":\"tools/call\",\"params\":{\"name\":\"list_tags\"}}"),
      R"({"id":1,"jsonrpc":"2.0","result":{}})"
      "\n"
      "{\"error\":{\"code\":-32601,\"message\":\"method not found: x\xef\xbf\xbd\"},\"id\":2,"
      "\"jsonrpc\":\"2.0\"}\n"
      R"({"id":3,"jsonrpc":"2.0","result":{"content":[{"text":"{\"tags\":[]}","type":"text"})"
      R"(],"structuredContent":{"tags":[]}}})"
      "\n");
}

TEST_F(RunServer, WorksWithoutKnowingItsOwnBuild) {
  int looks = 0;
  environment.fingerprint = [&]() -> BinaryFingerprint {
    ++looks;
    throw BinaryFingerprintError::executablePathUnavailable();
  };
  EXPECT_THAT(conversation(R"({"id":3,"method":"tools/call","params":{"name":"list_tags"}})"),
              ::testing::Not(::testing::HasSubstr("On-disk")));
  EXPECT_EQ(looks, 1);
}

TEST_F(RunServer, StopsQuietlyWhenNobodyReads) {
  ::signal(SIGPIPE, SIG_IGN);
  output.closeReader();
  Pipe input;
  input.write("{\"id\":1,\"method\":\"ping\"}\n");  // the input stays open
  environment.input = input.reader();
  runServer(environment);
}

TEST_F(RunServer, ReportsAnOutputThatCannotBeWritten) {
  Pipe input;
  input.write("{\"id\":1,\"method\":\"ping\"}\n");
  environment.input = input.reader();
  environment.output = input.reader();  // not open for writing
  EXPECT_THROW(runServer(environment), std::system_error);
}

}  // namespace
}  // namespace tavi::mcp
