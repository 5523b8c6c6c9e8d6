#include "desktop/linux/process/StandardOutputStream.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "desktop/harness/FileDescriptor.h"
#include "desktop/harness/Process.h"

namespace {

using harness::FileDescriptor;
using linux_desktop::StandardOutputStream;

class StandardOutputStreamTest : public ::testing::TestWithParam<int> {
 protected:
  StandardOutputStreamTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    reading_ = FileDescriptor(ends[0]);
    writing_ = FileDescriptor(ends[1]);
    ::fcntl(reading_.get(), F_SETFL, O_NONBLOCK);
    ::fcntl(writing_.get(), F_SETFL, GetParam());
  }

  /// What lies in the pipe, without waiting.
  [[nodiscard]] std::string read() const {
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::read(reading_.get(), buffer.data(), buffer.size())) > 0;) {
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
  }

  FileDescriptor reading_, writing_;
};

TEST_P(StandardOutputStreamTest, ALineIsInThePipeAtOnce) {
  StandardOutputStream output(writing_.get());
  output.print("Presentation mode is on");
  EXPECT_EQ(read(), "Presentation mode is on\n");
  const std::string longLine(20'000, 'x');
  output.print(longLine);
  EXPECT_EQ(read(), longLine + "\n");
}

TEST_P(StandardOutputStreamTest, AReaderThatDoesNotReadCostsLinesAndNoTime) {
  StandardOutputStream output(writing_.get());
  const std::string line(1000, 'x');
  for (int count = 0; count < 2000; ++count) output.print(line);
  output.print(std::string(100'000, 'y'));
  std::string text = read();
  EXPECT_GE(text.size(), 60'000U);
  EXPECT_EQ(text.size() % 1001, 0U) << "only whole lines";

  output.print(std::string(100'000, 'z'));
  EXPECT_EQ(read().find_first_not_of('z'), std::string::npos);
  output.print("next");
  EXPECT_EQ(read(), "\nnext\n") << "a cut line does not swallow the next one";
}

INSTANTIATE_TEST_SUITE_P(Pipe, StandardOutputStreamTest, ::testing::Values(0, O_NONBLOCK),
                         [](const auto& row) {
                           return row.param == 0 ? "Blocking" : "NonBlocking";
                         });

TEST(StandardOutputStreamFailures, AreIgnored) {
  const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  for (const int descriptor : {full.get(), -1, 9999}) {
    StandardOutputStream output(descriptor);
    output.print("line");
    output.print("line");
  }
}

TEST(StandardOutputStreamFailures, AReaderThatIsGoneDoesNotEndTheProgram) {
  const char* script = "(\"$0\" print 100000; echo $? >&2) | head -n 1";
  const harness::RunResult result =
      harness::runToEnd({.argv = {"sh", "-c", script, PROCESS_PROBE}});
  EXPECT_EQ(result.output, "line\n");
  EXPECT_EQ(result.errorOutput, "0\n");
}

}  // namespace
