#include "mcp/line_sink.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <csignal>
#include <thread>

#include "pipe.h"

namespace tavi::mcp {
namespace {

using testing::Pipe;

TEST(LineSink, HoldsALineBackUntilItIsFinished) {
  Pipe pipe;
  LineSink sink(pipe.writer());
  sink.append("one");
  sink.flush();
  EXPECT_EQ(pipe.readAvailable(), "");
  sink.finishLine();
  sink.append("two");
  sink.finishLine();
  EXPECT_EQ(pipe.readAvailable(), "one\ntwo\n");
}

TEST(LineSink, WritesALineThatFitsInOnePiece) {
  int ends[2];  // a socket that preserves the boundaries of writes
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0);
  const int room = 1 << 20;
  ::setsockopt(ends[0], SOL_SOCKET, SO_SNDBUF, &room, sizeof room);
  LineSink sink(ends[0]);
  for (int i = 0; i < 150; ++i) sink.append(std::string(1000, 'x'));
  sink.finishLine();
  std::string piece(200'000, ' ');
  EXPECT_EQ(::read(ends[1], piece.data(), piece.size()), 150'001);
  ::close(ends[0]), ::close(ends[1]);
}

std::string numbers(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += std::to_string(i) + ' ';
  return text;
}

class LongLines : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override { ::setenv("TMPDIR", GetParam(), 1); }
  void TearDown() override { ::unsetenv("TMPDIR"); }

  static std::string written(std::string_view line) {
    Pipe pipe;
    std::string received;
    std::jthread client([&] { received = pipe.readAll(); });
    LineSink sink(pipe.writer());
    for (int i = 0; i < 2; ++i) sink.append(line), sink.abandonLine();
    for (int i = 0; i < 2; ++i) sink.append(line), sink.finishLine();
    pipe.closeWriter();
    client.join();
    return received;
  }
};

TEST_P(LongLines, GoOutWholeOrNotAtAll) {
  const std::string beyondMemory = numbers(1'000'000);
  ASSERT_GT(beyondMemory.size(), 3 * LineSink::heldInMemory);
  for (const std::string& line :
       {std::string("short"), std::string(LineSink::heldInMemory, 'x'), beyondMemory})
    EXPECT_TRUE(written(line) == line + "\n" + line + "\n") << line.size();
}

// If the temporary folder does not exist, the line is held in memory.
INSTANTIATE_TEST_SUITE_P(LineSink, LongLines, ::testing::Values("/tmp", "/nonexistent"));

TEST(LineSink, TellsThatTheOutputIsLost) {
  ::signal(SIGPIPE, SIG_IGN);
  Pipe pipe;
  pipe.closeReader();
  LineSink sink(pipe.writer());
  sink.append("nobody");
  try {
    sink.finishLine();
    FAIL();
  } catch (const OutputLost& lost) {
    EXPECT_EQ(lost.why, std::errc::broken_pipe);
  }
}

}  // namespace
}  // namespace tavi::mcp
