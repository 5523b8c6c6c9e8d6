#include <gtest/gtest.h>

#include <optional>

#include "desktop/harness/SessionBus.h"
#include "desktop/linux/notifications/DaemonDoNotDisturb.h"
#include "desktop/notifications/NotificationStandIn.h"

namespace {

/// By a daemon that offers inhibitions, which is Plasma or unknown.
class InhibitionTest : public NotifierTest {
 protected:
  using State = linux_desktop::NotificationDaemon::State;

  InhibitionTest() { start("Plasma", "KDE"); }
  ~InhibitionTest() override { QDBusConnection::disconnectFromBus("ours"); }

  void start(const char* name, const char* vendor) {
    daemon.reset();
    EXPECT_TRUE(soon([this] { return known.state() == State::None; }));
    daemon.emplace(address_, name, vendor);
    EXPECT_TRUE(soon([this] { return known.state() == State::Known; }));
  }
  [[nodiscard]] bool becomes(bool inhibited) {
    return soon([&] { return daemon->inhibitions.empty() != inhibited; });
  }
  /// As the script turns it: by a click, where it is not as wanted.
  void want(bool on) {
    EXPECT_TRUE(quiet.exists());
    EXPECT_TRUE(quiet.isOn() == on || quiet.set(on));
  }

 private:
  harness::PrivateHome home_;
  harness::SessionBus bus_{home_, home_.environment()};
  const QString address_ = QString::fromStdString(bus_.address());

 protected:
  linux_desktop::NotificationDaemon known{QDBusConnection::connectToBus(address_, "ours")};
  linux_desktop::DaemonDoNotDisturb quiet{known};
  std::optional<NotificationStandIn> daemon;
};

TEST_F(InhibitionTest, IsHeldWhileItIsWantedAndTakenAgainAfterARestart) {
  for (const bool on : {true, false, true}) {
    want(on);
    EXPECT_TRUE(becomes(on));
  }
  start("quiet", "somebody");
  EXPECT_TRUE(becomes(true)) << "what it can do counts, not its name";
}

TEST_F(InhibitionTest, OursIsTakenBesideSomebodyElsesAndOnlyOursIsEnded) {
  constexpr uint kOther = 1000;
  daemon->inhibit({kOther});
  want(true);
  EXPECT_TRUE(soon([this] { return daemon->inhibitions.size() == 2; }))
      << "or it would end with his";
  want(false);
  EXPECT_TRUE(soon([&] { return daemon->inhibitions == std::set{kOther}; }));
}

TEST_F(InhibitionTest, IsTakenAgainWhenTheUserHasEndedAll) {
  want(true);
  ASSERT_TRUE(becomes(true));
  daemon->inhibit({});
  EXPECT_TRUE(soon([this] { return !quiet.isOn(); }));
  want(true);
  EXPECT_TRUE(becomes(true));
}

}  // namespace
