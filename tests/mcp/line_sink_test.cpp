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
  int ends[2];  // a socket that keeps what was written together apart from the rest
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

TEST(LineSink, TakesBackALineOfWhichNothingIsOut) {
  Pipe pipe;
  LineSink sink(pipe.writer());
  sink.append(std::string(LineSink::heldBack, 'x'));
  EXPECT_TRUE(sink.abandonLine());
  EXPECT_TRUE(sink.abandonLine());
  sink.append("kept");
  sink.finishLine();
  EXPECT_EQ(pipe.readAvailable(), "kept\n");
}

TEST(LineSink, EndsALineThatIsPartlyOut) {
  Pipe pipe;
  std::string received;
  {
    std::jthread client([&] { received = pipe.readAll(); });
    LineSink sink(pipe.writer());
    for (int i = 0; i < 3; ++i) sink.append(std::string(LineSink::heldBack, 'x'));
    EXPECT_FALSE(sink.abandonLine());
    sink.append("next");
    sink.finishLine();
    pipe.closeWriter();
  }
  const auto end = received.find('\n');
  EXPECT_GE(end, LineSink::heldBack);
  EXPECT_EQ(received.substr(0, end), std::string(end, 'x'));
  EXPECT_EQ(received.substr(end), "\nnext\n");
}

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
