#include "desktop/harness/Process.h"

#include <gtest/gtest.h>

#include <csignal>

namespace harness {
namespace {

using namespace std::chrono_literals;

Command shell(std::string script) {
  return {{"sh", "-c", std::move(script)}};
}

TEST(Process, LinesAreFoundInOrderAndEachOnlyOnce) {
  Process process(shell("echo one; echo two >&2; echo one; printf last"));
  EXPECT_EQ(process.waitForLine("^one$"), "one");
  EXPECT_EQ(process.waitForLine("o.e"), "one");
  EXPECT_EQ(process.waitForLine("tw", kPatience, Stream::Error), "two");
  EXPECT_EQ(process.waitForLine("last"), "last") << "an unfinished line counts at the end";
  EXPECT_FALSE(process.waitForLine("one")) << "the stream has ended";
}

TEST(Process, ATalkativeChildIsNeverBlocked) {
  const RunResult result = runToEnd(shell("head -c 1000000 /dev/zero | tr '\\0' 'x'"));
  EXPECT_TRUE(result.succeeded());
  EXPECT_EQ(result.output.size(), 1'000'000U);
}

TEST(Process, TheEndIsTold) {
  EXPECT_EQ(runToEnd(shell("exit 3")).end, (ProcessEnd{3, 0}));
  Process killed({{"cat", "/dev/stdin"}, {{"PATH", "/usr/bin:/bin"}}});
  EXPECT_TRUE(killed.waitForExit()->code == 0) << "standard input is empty";
  Process stopped(shell("echo up; exec sleep 1000"));
  ASSERT_TRUE(stopped.waitForLine("up"));
  stopped.freeze();
  EXPECT_TRUE(stopped.running());
  EXPECT_FALSE(stopped.waitForExit(0ms));
  EXPECT_EQ(stopped.terminate(), (ProcessEnd{-1, SIGTERM})) << "also while it was stopped";
  stopped.signal(SIGTERM);  // does nothing any more
}

TEST(Process, DescendantsEndToo) {
  std::string descendant;
  {
    Process process(shell("sleep 1000 & echo $!; wait"));
    descendant = process.waitForLine("^[0-9]+$").value();
  }
  // A killed process may linger for an instant until its new parent reaps it.
  const RunResult state = runToEnd(shell("ps -o stat= -p " + descendant + " || true"));
  EXPECT_TRUE(state.output.empty() || state.output.front() == 'Z') << state.output;
}

}  // namespace
}  // namespace harness
