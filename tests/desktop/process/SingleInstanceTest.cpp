#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QTemporaryDir>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>

#include "desktop/harness/EventLoopTest.h"
#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/process/SingleInstance.h"

namespace {

namespace fs = std::filesystem;
using linux_desktop::SingleInstance;
using Claim = SingleInstance::Claim;
using namespace std::chrono_literals;

/// Each start has an open lock of its own, so that one process can be several. The first one's
/// event loop is the test's.
class SingleInstanceTest : public harness::EventLoopTest<> {
 protected:
  SingleInstanceTest() {
    fs::create_directory(runtime);
    fs::permissions(runtime, fs::perms::owner_all);
  }

  [[nodiscard]] std::future<Claim> startAgain(std::chrono::milliseconds patience = 20s) const {
    return std::async(std::launch::async, [folder = runtime, patience] {
      return SingleInstance([] {}, folder).claim(patience);
    });
  }
  [[nodiscard]] static Claim answerTo(std::future<Claim>& start) {
    EXPECT_TRUE(soon([&] { return start.wait_for(0s) == std::future_status::ready; }));
    return start.get();
  }

  QTemporaryDir folder_;
  const fs::path runtime = fs::path(folder_.path().toStdString()) / "run";
  int shows = 0;
  SingleInstance first{[this] { ++shows; }, runtime};
};

TEST_F(SingleInstanceTest, OfManyStartsOneIsTheFirstAndIsShownByEachOther) {
  constexpr int kStarts = 12;
  ASSERT_EQ(first.claim(), Claim::First);
  std::vector<std::future<Claim>> starts;
  while (starts.size() < kStarts) starts.push_back(startAgain());
  for (auto& start : starts) EXPECT_EQ(answerTo(start), Claim::HandedOver);
  EXPECT_TRUE(soon([&] { return shows == kStarts; }));
}

TEST_F(SingleInstanceTest, OnlyARequestShowsItAndItsSocketGoesWithIt) {
  const fs::path file = runtime / "calmdeck.socket";
  {
    SingleInstance only{[this] { ++shows; }, runtime};
    ASSERT_EQ(only.claim(), Claim::First);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    file.string().copy(address.sun_path, sizeof address.sun_path - 1);
    const linux_desktop::FileDescriptor stranger(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(::sendto(stranger.get(), "hide\n", 5, 0, reinterpret_cast<const sockaddr*>(&address),
                       sizeof address),
              5);
    auto second = startAgain();
    EXPECT_EQ(answerTo(second), Claim::HandedOver);
    EXPECT_EQ(shows, 1) << "they come one after the other";
  }
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(SingleInstanceTest, AHungFirstIsSaidSoInTimeAndDoesItLateRatherThanNever) {
  ASSERT_EQ(first.claim(), Claim::First);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(startAgain(300ms).get(), Claim::Unanswered);
  const std::string said = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::ranges::count(said, '\n'), 1) << said;
  EXPECT_NE(said.find("does not answer"), std::string::npos) << said;
  EXPECT_TRUE(soon([&] { return shows > 0; }));
}

TEST_F(SingleInstanceTest, ALockFileFromElsewhereIsNoObstacle) {
  std::ofstream(runtime / "calmdeck.lock") << "1\nsomebody\nanotherhost\n";
  std::ofstream(runtime / "calmdeck.socket") << "not even a socket";
  ASSERT_EQ(first.claim(), Claim::First);
  auto second = startAgain();
  EXPECT_EQ(answerTo(second), Claim::HandedOver);
}

TEST_F(SingleInstanceTest, WithoutARuntimeFolderTheCacheServes) {
  const fs::path root = folder_.path().toStdString();
  const fs::path cache = root / "cache";
  ::setenv("XDG_CACHE_HOME", cache.c_str(), 1);
  fs::create_directory(root / "public");
  fs::permissions(root / "public", fs::perms::all);
  for (const fs::path& folder :
       {fs::path(), fs::relative(runtime), root / "missing", root / "public"}) {
    ::setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    EXPECT_EQ(linux_desktop::runtimeFolder(), cache / "calmdeck") << folder;
    EXPECT_EQ(fs::status(cache / "calmdeck").permissions(), fs::perms::owner_all);
  }
  ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
  EXPECT_EQ(linux_desktop::runtimeFolder(), runtime);
}

TEST_F(SingleInstanceTest, WithoutAnyPlaceForALockTheProgramStarts) {
  ::unsetenv("XDG_RUNTIME_DIR");
  const fs::path file = folder_.filePath("in the way").toStdString();
  std::ofstream(file) << "a file";
  ::setenv("XDG_CACHE_HOME", file.c_str(), 1);
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(SingleInstance([] {}).claim(), Claim::First);
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("second start"), std::string::npos);
}

TEST(BusNameTest, ATakenNameStaysWhereItIsAndNoPlaceInAQueueIsTaken) {
  int argc = 0;
  const QCoreApplication application(argc, nullptr);
  harness::Process bus(
      {.argv = {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"}});
  const QString address = QString::fromStdString(bus.waitForLine("^unix:").value_or(""));
  constexpr const char* kName = "org.calmdeck.Calmdeck";
  auto program = QDBusConnection::connectToBus(address, "program");
  auto other = QDBusConnection::connectToBus(address, "other");
  // The bus answers each in order: once this is answered, so is what was asked before.
  const auto owner = [&] { return program.interface()->serviceOwner(kName).value(); };
  ASSERT_TRUE(other.registerService(kName));
  linux_desktop::requestBusName(program);
  EXPECT_EQ(owner(), other.baseService());
  ASSERT_TRUE(other.unregisterService(kName));
  EXPECT_EQ(owner(), "");
  bus.freeze();
  linux_desktop::requestBusName(program);
  bus.thaw();
  EXPECT_EQ(owner(), program.baseService()) << "a bus that hangs is not waited for";
}

}  // namespace
