#include <gtest/gtest.h>

#include <csignal>

#include "desktop/harness/Process.h"

namespace {

using harness::Process;
using harness::ProcessEnd;

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

}  // namespace
