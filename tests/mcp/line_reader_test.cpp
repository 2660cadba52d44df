#include "mcp/line_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <thread>
#include <vector>

#include "pipe.h"

namespace {
std::atomic<std::size_t> arrayBytes = 0;  // allocated with new[] since the start of the program
std::atomic<std::size_t> largestArray = SIZE_MAX;
}  // namespace

void* operator new[](std::size_t size) {
  arrayBytes += size;
  if (size > largestArray) throw std::bad_alloc();
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace tavi::mcp {
namespace {

using ::testing::ElementsAre;
using testing::Pipe;

std::vector<std::string> lines(LineReader& reader) {
  std::vector<std::string> all;
  while (const auto line = reader.next()) all.emplace_back(*line);
  return all;
}

std::vector<std::string> linesOf(std::string_view input) {
  Pipe pipe;
  std::jthread client([&] {
    pipe.write(input);
    pipe.closeWriter();
  });
  LineReader reader(pipe.reader());
  return lines(reader);
}

TEST(LineReader, TakesEitherLineEndingAndALastLineWithoutOne) {
  EXPECT_THAT(linesOf("a\nb\r\n\n\r\nc"), ElementsAre("a", "b", "", "", "c"));
  EXPECT_THAT(linesOf("a\n"), ElementsAre("a"));
  EXPECT_THAT(linesOf("a\rb\n"), ElementsAre("a\rb"));
  EXPECT_THAT(linesOf(""), ElementsAre());
}

TEST(LineReader, GivesALineOutBeforeTheNextOneComes) {
  Pipe pipe;
  LineReader reader(pipe.reader());
  pipe.write("fir");
  pipe.write("st\nsec");
  EXPECT_EQ(reader.next(), "first");
  pipe.write("ond\n");
  EXPECT_EQ(reader.next(), "second");
  pipe.closeWriter();
  EXPECT_EQ(reader.next(), std::nullopt);
}

TEST(LineReader, ReadsLinesOfAnyLengthAmongShortOnes) {
  const std::string large(5'000'001, 'x'), medium(65'536, 'y');
  EXPECT_THAT(linesOf("a\n" + large + "\r\n" + medium + "\nb\n" + large + "\nc"),
              ElementsAre("a", large, medium, "b", large, "c"));
}

TEST(LineReader, CopiesALongLineAConstantNumberOfTimes) {
  const std::string large(16'000'000, 'x');
  const std::size_t before = arrayBytes;
  EXPECT_THAT(linesOf(large), ElementsAre(large));
  EXPECT_LT(arrayBytes - before, 5 * large.size());
}

TEST(LineReader, PassesOverALineThatMemoryCannotHold) {
  Pipe pipe;
  std::jthread client([&] {
    pipe.write("a\n" + std::string(3'000'000, 'x') + "\nb\n");
    pipe.closeWriter();
  });
  LineReader reader(pipe.reader());
  EXPECT_EQ(reader.next(), "a");
  largestArray = 1'000'000;
  EXPECT_THROW(reader.next(), std::bad_alloc);
  largestArray = SIZE_MAX;
  EXPECT_THAT(lines(reader), ElementsAre("b"));
}

TEST(LineReader, ReplacesIllFormedUTF8) {
  EXPECT_THAT(linesOf("a\xff"
                      "b\n\xe2\x82\n\xc3\xa9\n"),
              ElementsAre("a\xef\xbf\xbd"
                          "b",
                          "\xef\xbf\xbd", "\xc3\xa9"));
}

TEST(LineReader, WaitsOnANonBlockingPipe) {
  Pipe pipe;
  ::fcntl(pipe.reader(), F_SETFL, O_NONBLOCK);
  std::jthread client([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    pipe.write("late\n");
    pipe.closeWriter();
  });
  LineReader reader(pipe.reader());
  EXPECT_THAT(lines(reader), ElementsAre("late"));
}

TEST(LineReader, TakesAFailingReadForTheEnd) {
  LineReader reader(-1);
  EXPECT_EQ(reader.next(), std::nullopt);
}

}  // namespace
}  // namespace tavi::mcp
