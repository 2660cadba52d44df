#include "bytes/byte_sink.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <string>

namespace tavi {
namespace {

TEST(ByteSink, KeepsTheOrderAcrossItsBuffer) {
  StringSink sink;
  std::string expected;
  for (std::size_t length : {std::size_t{1}, ByteSink::bufferSize - 1, std::size_t{2},
                             ByteSink::bufferSize, std::size_t{3}, 3 * ByteSink::bufferSize}) {
    const std::string part(length, static_cast<char>('a' + length % 26));
    sink.append(part);
    sink.put('|');
    expected += part + '|';
  }
  EXPECT_TRUE(sink.take() == expected);
}

TEST(DescriptorSink, TellsAReaderThatLeftFromAFault) {
  std::signal(SIGPIPE, SIG_IGN);
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ::close(ends[0]);
  DescriptorSink toNobody(ends[1]);
  toNobody.put('x');
  EXPECT_THROW(toNobody.flush(), OutputClosed);
  EXPECT_NO_THROW(toNobody.flush());  // the failed bytes were dropped
  ::close(ends[1]);

  const int full = ::open("/dev/full", O_WRONLY);
  DescriptorSink toFullDevice(full);
  toFullDevice.put('x');
  try {
    toFullDevice.flush();
    ADD_FAILURE() << "a full device took the output";
  } catch (const OutputClosed&) {
    ADD_FAILURE() << "a full device is no closed pipe";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::no_space_on_device);
  }
  ::close(full);
}

}  // namespace
}  // namespace tavi
