#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "desktop/harness/Process.h"
#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/process/SingleInstance.h"

namespace {

namespace fs = std::filesystem;
using harness::Process;
using harness::ProcessEnd;
using harness::Stream;
using linux_desktop::requestBusName;

class SingleInstanceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(runtime());
    fs::permissions(runtime(), fs::perms::owner_all);
    environment_["XDG_RUNTIME_DIR"] = runtime();
    environment_["XDG_CACHE_HOME"] = cache();
    environment_.erase("DBUS_SESSION_BUS_ADDRESS");
  }

  [[nodiscard]] fs::path root() const { return folder_.path().toStdString(); }
  [[nodiscard]] fs::path runtime() const { return root() / "run"; }
  [[nodiscard]] fs::path cache() const { return root() / "cache"; }
  [[nodiscard]] harness::Command instance(int shows = 1000) const {
    return {{PROCESS_PROBE, "instance", std::to_string(shows)}, environment_};
  }
  [[nodiscard]] harness::RunResult startAgain() const { return runToEnd(instance()); }

  QTemporaryDir folder_;
  harness::Environment environment_ = harness::ownEnvironment();
};

TEST_F(SingleInstanceTest, EveryFurtherStartShowsTheFirst) {
  Process first(instance(2));
  ASSERT_TRUE(first.waitForLine("^first$"));
  for (int start = 0; start < 2; ++start) {
    const harness::RunResult second = startAgain();
    EXPECT_TRUE(second.succeeded());
    EXPECT_EQ(second.output + second.errorOutput, "handed over\n");
  }
  EXPECT_EQ(first.waitForExit(), (ProcessEnd{0, 0}));
  EXPECT_EQ(first.output(), "first\nshow\nshow\n");
  EXPECT_EQ(first.errorOutput(), "");

  Process next(instance());
  EXPECT_TRUE(next.waitForLine("^first$"));
}

TEST_F(SingleInstanceTest, AKilledFirstLeavesTheWayFree) {
  for (int round = 0; round < 3; ++round) {
    Process first(instance());
    ASSERT_TRUE(first.waitForLine("^first$")) << first.errorOutput();
    EXPECT_TRUE(fs::exists(runtime() / "calmdeck.socket"));
    EXPECT_TRUE(startAgain().succeeded());
    first.kill();
  }
}

TEST_F(SingleInstanceTest, AHungFirstIsSaidSoInTime) {
  Process first(instance());
  ASSERT_TRUE(first.waitForLine("^first$"));
  first.freeze();
  Process second(instance());
  EXPECT_EQ(second.waitForExit(std::chrono::seconds(10)), (ProcessEnd{1, 0}));
  const std::string said = second.errorOutput();
  EXPECT_EQ(std::ranges::count(said, '\n'), 1) << said;
  EXPECT_NE(said.find("does not answer"), std::string::npos) << said;

  first.thaw();
  EXPECT_TRUE(first.waitForLine("^show$")) << "what was asked is done late rather than never";
}

// One of a crowd that starts at once is the first, whoever comes while it is not yet listening.
TEST_F(SingleInstanceTest, OfManySimultaneousStartsOneIsTheFirst) {
  constexpr int kStarts = 12;
  std::vector<std::unique_ptr<Process>> starts;
  starts.reserve(kStarts);
  for (int start = 0; start < kStarts; ++start) {
    starts.push_back(std::make_unique<Process>(instance(kStarts - 1)));
  }
  std::string outputs;
  for (const auto& start : starts) {
    EXPECT_EQ(start->waitForExit(), (ProcessEnd{0, 0})) << start->errorOutput();
    outputs += start->output();
  }
  EXPECT_EQ(outputs.find("first"), outputs.rfind("first"));
}

TEST_F(SingleInstanceTest, WithoutARuntimeFolderTheCacheServes) {
  const std::string useless[] = {"", "relative", root() / "missing", root() / "public"};
  fs::create_directory(root() / "public");
  fs::permissions(root() / "public", fs::perms::all);
  for (const std::string& folder : useless) {
    environment_["XDG_RUNTIME_DIR"] = folder;
    Process first(instance(1));
    ASSERT_TRUE(first.waitForLine("^first$")) << folder;
    EXPECT_TRUE(startAgain().succeeded()) << folder;
    EXPECT_EQ(first.waitForExit(), (ProcessEnd{0, 0}));
    EXPECT_EQ(fs::status(cache() / "calmdeck").permissions(), fs::perms::owner_all);
  }
}

TEST_F(SingleInstanceTest, WithoutAnyPlaceForALockTheProgramStarts) {
  environment_.erase("XDG_RUNTIME_DIR");
  std::ofstream(cache()) << "in the way";
  Process first(instance());
  EXPECT_TRUE(first.waitForLine("^first$"));
  EXPECT_TRUE(first.waitForLine("second start", harness::kPatience, Stream::Error));
}

TEST_F(SingleInstanceTest, ALockFileFromElsewhereIsNoObstacle) {
  std::ofstream(runtime() / "calmdeck.lock") << "1\nsomebody\nanotherhost\n";
  std::ofstream(runtime() / "calmdeck.socket") << "not even a socket";
  Process first(instance());
  ASSERT_TRUE(first.waitForLine("^first$"));
  EXPECT_TRUE(startAgain().succeeded());
}

class Caller {
 public:
  explicit Caller(const fs::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    connected_ =
        ::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  [[nodiscard]] bool connected() const { return connected_; }
  void say(const std::string& text) const {
    ::send(socket_.get(), text.data(), text.size(), MSG_NOSIGNAL);
  }
  /// Whether the other side hangs up, without an answer.
  [[nodiscard]] bool isHungUpOn() const {
    char byte = 0;
    return ::recv(socket_.get(), &byte, 1, 0) <= 0;
  }

 private:
  harness::FileDescriptor socket_{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  bool connected_ = false;
};

TEST_F(SingleInstanceTest, CallersThatMakeNoSenseAreHungUpOn) {
  Process first(instance());
  ASSERT_TRUE(first.waitForLine("^first$"));
  for (const std::string& nonsense :
       {std::string("hide\n"), std::string(100'000, 'x'), std::string()}) {
    const Caller caller(runtime() / "calmdeck.socket");
    ASSERT_TRUE(caller.connected());
    caller.say(nonsense);
    EXPECT_TRUE(caller.isHungUpOn()) << nonsense.substr(0, 10);
  }
  EXPECT_TRUE(startAgain().succeeded());
  EXPECT_TRUE(first.waitForLine("^show$"));
  first.terminate();
  EXPECT_EQ(first.output(), "first\nshow\n");
}

constexpr const char* kName = "org.calmdeck.Calmdeck";

/// A bus of its own with two peers on it.
class BusNameTest : public ::testing::Test {
 protected:
  void SetUp() override {
    address_ = QString::fromStdString(bus_.waitForLine("^unix:").value_or(""));
    program_.emplace(QDBusConnection::connectToBus(address_, "program"));
    other_.emplace(QDBusConnection::connectToBus(address_, "other"));
    ASSERT_TRUE(program_->isConnected() && other_->isConnected());
  }
  void TearDown() override {
    QDBusConnection::disconnectFromBus("program");
    QDBusConnection::disconnectFromBus("other");
  }

  [[nodiscard]] QString owner() const { return other_->interface()->serviceOwner(kName).value(); }

  /// Runs the loop until somebody owns the name.
  void waitForOwner() {
    QEventLoop loop;
    QDBusServiceWatcher watcher(kName, *other_, QDBusServiceWatcher::WatchForRegistration);
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &loop, &QEventLoop::quit);
    QTimer::singleShot(harness::kPatience, &loop, &QEventLoop::quit);
    if (owner().isEmpty()) loop.exec();
  }

  int argc_ = 0;
  QCoreApplication application_{argc_, nullptr};
  harness::Process bus_{
      {.argv = {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"}}};
  QString address_;
  std::optional<QDBusConnection> program_, other_;
};

TEST_F(BusNameTest, TheProgramIsFoundUnderItsName) {
  requestBusName(*program_);
  waitForOwner();
  EXPECT_EQ(owner(), program_->baseService());
  QDBusConnection::disconnectFromBus("program");
  program_.reset();
  EXPECT_TRUE(harness::until([&] { return owner().isEmpty(); }))
      << "the name goes with its connection";
}

TEST_F(BusNameTest, ATakenNameStaysWhereItIs) {
  ASSERT_TRUE(other_->registerService(kName));
  requestBusName(*program_);
  // The bus answers in order: once this is answered, so is the request.
  ASSERT_TRUE(QDBusReply<QString>(program_->interface()->serviceOwner(kName)).isValid());
  EXPECT_EQ(owner(), other_->baseService());
  ASSERT_TRUE(other_->unregisterService(kName));
  EXPECT_EQ(owner(), "") << "no place in a queue was taken";
}

TEST_F(BusNameTest, ABusThatHangsIsNotWaitedFor) {
  bus_.freeze();
  requestBusName(*program_);
  bus_.thaw();
  waitForOwner();
  EXPECT_EQ(owner(), program_->baseService());
}

TEST_F(BusNameTest, WithoutABusNothingHappens) {
  requestBusName(QDBusConnection::connectToBus("unix:path=/nonexistent", "dead"));
  QDBusConnection::disconnectFromBus("dead");
}

}  // namespace
