#include "desktop/linux/process/BusName.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QTimer>
#include <string>

#include "desktop/harness/Process.h"
#include "desktop/harness/Until.h"

namespace {

using linux_desktop::requestBusName;

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
