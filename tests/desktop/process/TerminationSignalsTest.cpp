#include <fcntl.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <array>
#include <csignal>
#include <string>

#include "desktop/harness/Process.h"
#include "desktop/linux/process/StandardOutputStream.h"
#include "desktop/linux/process/TerminationSignals.h"

namespace {

using harness::FileDescriptor;
using linux_desktop::StandardOutputStream;
using linux_desktop::TerminationSignals;

class TerminationSignalsTest : public ::testing::Test {
 protected:
  void SetUp() override { earlier_ = ::signal(SIGHUP, SIG_DFL); }  // the suite may run under nohup
  void TearDown() override { ::signal(SIGHUP, earlier_); }

  /// In an event loop inside another, as while an alert is up.
  [[nodiscard]] static bool soon(const std::function<bool()>& fact) {
    return harness::until(fact, harness::kPatience, [] {
      QEventLoop outer;
      QMetaObject::invokeMethod(
          &outer,
          [&] {
            QEventLoop().processEvents();
            outer.quit();
          },
          Qt::QueuedConnection);
      outer.exec(QEventLoop::ExcludeUserInputEvents);
    });
  }

  int argc_ = 0;
  QCoreApplication application_{argc_, nullptr};
  int ends = 0;

 private:
  void (*earlier_)(int) = SIG_DFL;
};

TEST_F(TerminationSignalsTest, EachEndsItOnceOutOfTheInnermostLoopAlsoIfTheParentBlockedIt) {
  sigset_t all;
  sigset_t earlier;
  sigfillset(&all);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    ::pthread_sigmask(SIG_SETMASK, &all, &earlier);
    const TerminationSignals termination([this] { ++ends; });
    ::raise(number);
    ::raise(number);
    EXPECT_EQ(ends, 0) << "not out of the handler";
    EXPECT_TRUE(soon([this] { return ends > 0; })) << number;
    EXPECT_EQ(std::exchange(ends, 0), 1);
    ::pthread_sigmask(SIG_SETMASK, &earlier, nullptr);
  }
}

TEST_F(TerminationSignalsTest, WhoUsedNohupIsNotHungUpOn) {
  ::signal(SIGHUP, SIG_IGN);
  const TerminationSignals termination([this] { ++ends; });
  struct sigaction now {};
  ::sigaction(SIGHUP, nullptr, &now);
  EXPECT_EQ(now.sa_handler, SIG_IGN);
}

// Qt sends the session manager's word in this way.
TEST_F(TerminationSignalsTest, ALogoutEndsIt) {
  const TerminationSignals termination([this] { ++ends; });
  QEvent quit(QEvent::Quit);
  for (int time = 0; time < 2; ++time) QCoreApplication::sendEvent(&application_, &quit);
  EXPECT_EQ(ends, 1) << "once";
}

TEST_F(TerminationSignalsTest, AReaderThatIsGoneDoesNotEndTheProgram) {
  const TerminationSignals termination([this] { ++ends; });
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
  const FileDescriptor writing(pipe[1]);
  ::close(pipe[0]);
  for (int line = 0; line < 2; ++line) StandardOutputStream(writing.get()).print("line");
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

}  // namespace
