#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <string>

#include "desktop/harness/LineCapture.h"
#include "desktop/harness/Process.h"
#include "desktop/linux/process/StandardOutputStream.h"

namespace {

using harness::FileDescriptor;
using harness::Process;
using harness::ProcessEnd;
using linux_desktop::StandardOutputStream;

Process probe(const std::string& action, int number) {
  return Process({.argv = {PROCESS_PROBE, action, std::to_string(number)}});
}

class TerminationSignalsTest : public ::testing::Test {
 protected:
  void SetUp() override { earlier_ = ::signal(SIGHUP, SIG_DFL); }  // the suite may run under nohup
  void TearDown() override { ::signal(SIGHUP, earlier_); }

 private:
  void (*earlier_)(int) = SIG_DFL;
};

TEST_F(TerminationSignalsTest, EachEndsWithZeroOutOfTheInnermostLoop) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    for (const int loops : {1, 3}) {
      Process program = probe("end", loops);
      ASSERT_TRUE(program.waitForLine("^ready$"));
      program.signal(number);
      EXPECT_EQ(program.waitForExit(), (ProcessEnd{0, 0})) << number << " in " << loops;
      EXPECT_EQ(program.output(), "ready\nend\n");
    }
  }
}

TEST_F(TerminationSignalsTest, WhoUsedNohupIsNotHungUpOn) {
  ::signal(SIGHUP, SIG_IGN);
  Process program = probe("end", 1);
  ASSERT_TRUE(program.waitForLine("^ready$"));
  program.signal(SIGHUP);
  program.signal(SIGTERM);
  EXPECT_EQ(program.waitForExit(), (ProcessEnd{0, 0}));
  EXPECT_EQ(program.output(), "ready\nend\n");
}

TEST_F(TerminationSignalsTest, SignalsBlockedByTheParentEndItToo) {
  sigset_t all;
  sigset_t earlier;
  sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &earlier);
  Process program = probe("end", 1);
  ::pthread_sigmask(SIG_SETMASK, &earlier, nullptr);
  ASSERT_TRUE(program.waitForLine("^ready$"));
  program.signal(SIGTERM);
  EXPECT_EQ(program.waitForExit(), (ProcessEnd{0, 0}));
}

TEST_F(TerminationSignalsTest, ALogoutEndsWithZero) {
  Process program = probe("logout", 0);
  EXPECT_EQ(program.waitForExit(), (ProcessEnd{0, 0}));
  EXPECT_EQ(program.output(), "end\n");
}

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
