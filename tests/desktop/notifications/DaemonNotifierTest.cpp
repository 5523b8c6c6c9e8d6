#include "desktop/linux/notifications/DaemonNotifier.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <string>
#include <vector>

#include "desktop/harness/XDesk.h"
#include "desktop/linux/bus/BusCall.h"
#include "desktop/notifications/NotificationStandIn.h"

namespace {

using harness::XDesk;
using linux_desktop::DaemonNotifier;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> warnings;
void takeWarning(QtMsgType, const QMessageLogContext&, const QString& text) {
  warnings.push_back(text.toStdString());
}

constexpr auto soon = harness::EventLoopTest<>::soon;

/// Our side of a bus.
class Sender {
 public:
  explicit Sender(const QString& address)
      : bus_(QDBusConnection::connectToBus(address, kName)), daemon_(bus_) {
    warnings.clear();
    previous_ = qInstallMessageHandler(&takeWarning);
  }
  ~Sender() {
    qInstallMessageHandler(previous_);
    QDBusConnection::disconnectFromBus(kName);
  }
  Sender(const Sender&) = delete;
  Sender& operator=(const Sender&) = delete;

  [[nodiscard]] bool show(const std::string& text) { return !notifier_.show(text).has_value(); }
  /// Waits until what the daemon has sent so far has been heard, which it has when the answer to
  /// one more question has come.
  void hearAll() {
    bool heard = false;
    linux_desktop::ask(
        bus_,
        linux_desktop::busCall("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                               "org.freedesktop.Notifications", "GetCapabilities"),
        &daemon_, [&](const QDBusMessage&) { heard = true; });
    EXPECT_TRUE(soon([&] { return heard; }));
  }
  [[nodiscard]] bool settles(linux_desktop::NotificationDaemon::State state) {
    return soon([&] { return daemon_.state() == state; });
  }

 private:
  static constexpr const char* kName = "sender";
  QDBusConnection bus_;
  linux_desktop::NotificationDaemon daemon_;
  DaemonNotifier notifier_{daemon_};
  QtMessageHandler previous_ = nullptr;
};

class DaemonNotifierTest : public NotificationsTest {
 protected:
  void startDaemon() {
    daemon.reset();
    daemon.emplace(address);
  }
  [[nodiscard]] bool got(std::size_t calls) {
    return soon([&] { return daemon->calls.size() == calls; });
  }
  [[nodiscard]] std::vector<std::string> summaries() const {
    std::vector<std::string> all;
    for (const auto& call : daemon->calls) all.push_back(call.summary.toStdString());
    return all;
  }
  /// Returns when the daemon has got it and we have its answer.
  void show(Sender& sender, const std::string& text) {
    const std::size_t before = daemon->calls.size();
    ASSERT_TRUE(sender.show(text));
    ASSERT_TRUE(got(before + 1));
    sender.hearAll();
  }
};

TEST_F(DaemonNotifierTest, TheDaemonGetsOurNameAndTheTextAsItIs) {
  startDaemon();
  Sender sender(address);
  ASSERT_TRUE(sender.show("Mic <muted> & more"));
  ASSERT_TRUE(got(1));
  const auto& call = daemon->calls.front();
  EXPECT_EQ(call.application, "Calmdeck");
  EXPECT_EQ(call.icon, "org.calmdeck.Calmdeck");
  EXPECT_EQ(call.summary, "Mic <muted> & more") << "a summary is never markup";
  EXPECT_EQ(call.body, "");
  EXPECT_EQ(call.hints.value("desktop-entry"), "org.calmdeck.Calmdeck");
  EXPECT_EQ(call.hints.value("urgency"), QVariant::fromValue(uchar{1}));
  EXPECT_EQ(call.hints.value("transient"), true);
}

TEST_F(DaemonNotifierTest, OneThatIsClosedIsNotReplaced) {
  startDaemon();
  Sender sender(address);
  show(sender, "Mic muted");
  const uint id = daemon->calls.back().id;
  daemon->close(id + 7);
  sendAsAnother(NotificationStandIn::closed(id));
  sender.hearAll();
  show(sender, "Mic unmuted");
  EXPECT_EQ(daemon->calls.back().replaces, id) << "that was another's, or said by another";
  daemon->close(daemon->calls.back().id);
  sender.hearAll();
  show(sender, "Mic muted");
  EXPECT_EQ(daemon->calls.back().replaces, 0U);
}

TEST_F(DaemonNotifierTest, ADaemonThatHangsGetsTheNewestTextWhenItGoesOn) {
  startDaemon();
  Sender sender(address);
  daemon->hangs = true;
  for (int press = 1; press <= 1000; ++press) ASSERT_TRUE(sender.show(std::to_string(press)));
  EXPECT_TRUE(soon([] { return !warnings.empty(); }));
  EXPECT_THAT(summaries(), ElementsAre("1"));
  daemon->release();
  ASSERT_TRUE(got(2));
  EXPECT_THAT(summaries(), ElementsAre("1", "1000"));
  EXPECT_EQ(daemon->shown.size(), 1U);
  EXPECT_THAT(warnings, ElementsAre(HasSubstr("does not answer")));
}

TEST_F(DaemonNotifierTest, AnotherDaemonIsNotAskedToReplaceAnything) {
  startDaemon();
  Sender sender(address);
  for (const bool loses : {false, true}) {
    show(sender, "Mic muted");
    if (loses) {
      daemon->hangs = true;
      ASSERT_TRUE(sender.show("lost with the daemon"));
      ASSERT_TRUE(soon([&] { return daemon->calls.back().summary.startsWith("lost"); }));
    }
    daemon.reset();
    ASSERT_TRUE(sender.settles(State::None)) << "or it would be taken for the one before";
    startDaemon();
    ASSERT_TRUE(sender.settles(State::Known));
    show(sender, "Mic unmuted");
    EXPECT_EQ(daemon->calls.back().summary, "Mic unmuted");
    EXPECT_EQ(daemon->calls.back().replaces, 0U);
  }
}

TEST_F(DaemonNotifierTest, WhoSaysNoIsToldOnce) {
  startDaemon();
  Sender sender(address);
  daemon->refuses = true;
  for (int press = 0; press < 3; ++press) show(sender, "Mic muted");
  EXPECT_THAT(warnings, ElementsAre(HasSubstr("no more of these")));
}

TEST_F(DaemonNotifierTest, WhereNothingShowsNotificationsTheCallerHearsIt) {
  EXPECT_FALSE(Sender(QStringLiteral("unix:path=/nowhere")).show("Mic muted"));
  Sender sender(address);
  ASSERT_TRUE(sender.settles(State::None));
  EXPECT_FALSE(sender.show("Mic muted"));
  startDaemon();
  ASSERT_TRUE(sender.settles(State::Known));
  show(sender, "Mic muted");
  daemon.reset();
  ASSERT_TRUE(sender.settles(State::None));
  EXPECT_FALSE(sender.show("Mic unmuted"));
  EXPECT_THAT(warnings, IsEmpty());
}

/// By the daemons of the desktops.
class EveryDaemonShows
    : public harness::EventLoopTest<testing::TestWithParam<harness::NotificationDaemon>> {};

TEST_P(EveryDaemonShows, OneNotificationForTwentyPresses) {
  XDesk desk({.windowManager = harness::WindowManager::Openbox, .notifications = GetParam()});
  Sender sender(QString::fromStdString(desk.bus().address()));
  const std::size_t before = desk.windows().viewable().size();
  for (int press = 0; press < 20; ++press) {
    ASSERT_TRUE(sender.show(press % 2 == 0 ? "Mic muted" : "Mic unmuted"));
    for (int turn = 0; turn < 20; ++turn) QCoreApplication::processEvents();
    ASSERT_TRUE(soon([&] { return desk.windows().viewable().size() == before + 1; }))
        << "press " << press;
  }
  EXPECT_THAT(warnings, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, EveryDaemonShows,
                         testing::Values(harness::NotificationDaemon::XfceNotifyd,
                                         harness::NotificationDaemon::Dunst,
                                         harness::NotificationDaemon::Mate,
                                         harness::NotificationDaemon::Lxqt),
                         testing::PrintToStringParamName());

using ABus = harness::EventLoopTest<>;

TEST_F(ABus, ShowsTheFirstOneOfWhatTheBusStarts) {
  XDesk desk;
  desk.bus().offer("org.freedesktop.Notifications", "/usr/bin/dunst");
  Sender sender(QString::fromStdString(desk.bus().address()));
  ASSERT_TRUE(sender.settles(linux_desktop::NotificationDaemon::State::None));
  const std::size_t before = desk.windows().viewable().size();
  ASSERT_TRUE(sender.show("Mic muted"));
  EXPECT_TRUE(soon([&] { return desk.windows().viewable().size() == before + 1; }));
  EXPECT_THAT(warnings, IsEmpty());
}

}  // namespace
