// Do Not Disturb over stand-ins: the settings that shells read which show notifications themselves,
// Budgie's switch, which can only be turned round, and inhibitions.

#include <gtest/gtest.h>

#include <QDBusVirtualObject>
#include <QTemporaryDir>
#include <functional>
#include <optional>

#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/notifications/DaemonDoNotDisturb.h"
#include "desktop/notifications/NotificationStandIn.h"

namespace {

/// The switch over a stand-in.
class SwitchTest : public NotificationsTest {
 protected:
  ~SwitchTest() override { QDBusConnection::disconnectFromBus("ours"); }

  /// `further` offers what else is on the daemon's connection.
  void start(
      const char* name, const char* vendor, const std::function<void()>& further = [] {}) {
    daemon.reset();
    EXPECT_TRUE(soon([this] { return known.state() == State::None; }));
    daemon.emplace(address, name, vendor);
    further();
    EXPECT_TRUE(soon([this] { return known.state() == State::Known; }));
  }
  /// As the script turns it: by a click, where it is not as wanted.
  void want(bool on) {
    EXPECT_TRUE(quiet.exists());
    EXPECT_TRUE(quiet.isOn() == on || quiet.set(on));
  }

  linux_desktop::NotificationDaemon known{QDBusConnection::connectToBus(address, "ours")};
  linux_desktop::DaemonDoNotDisturb quiet{known};
};

struct Shell {
  const char* name;
  const char* schema;
  const char* key;
};

class SettingsOfAShell : public SwitchTest, public testing::WithParamInterface<Shell> {
 protected:
  SettingsOfAShell() {
    static const QTemporaryDir folder;
    qputenv("GSETTINGS_BACKEND", "keyfile");
    qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
  }
};

constexpr Shell kShells[] = {
    {"cinnamon", "org.cinnamon.desktop.notifications", "display-notifications"},
    {"gnome-shell", "org.gnome.desktop.notifications", "show-banners"}};

INSTANTIATE_TEST_SUITE_P(, SettingsOfAShell, testing::ValuesIn(kShells), [](const auto& row) {
  return std::string(row.param.schema).substr(4, row.param.schema[4] == 'c' ? 8 : 5);
});

TEST_P(SettingsOfAShell, AreSwitchedWhateverTheUserDidByHand) {
  const auto& [name, schema, key] = GetParam();
  const auto settings = linux_desktop::GuardedSettings::open(schema, {key});
  ASSERT_TRUE(settings) << schema << " is not installed";
  start(name, "GNOME");
  const auto isOn = [&] { return settings->flag(key) == false; };
  for (const bool byHand : {false, true}) {
    ASSERT_TRUE(settings->setFlag(key, !byHand));
    want(true);
    EXPECT_TRUE(isOn());
    ASSERT_TRUE(settings->setFlag(key, byHand));
    want(false);
    EXPECT_FALSE(isOn());
  }
}

TEST_P(SettingsOfAShell, AreUnsetAgainWhereNobodyHadSetThem) {
  const auto& [name, schema, key] = GetParam();
  const auto settings = linux_desktop::GuardedSettings::open(schema, {key});
  ASSERT_TRUE(settings) << schema << " is not installed";
  ASSERT_TRUE(settings->setUserValue(key, std::nullopt));
  start(name, "GNOME");
  for (const bool restarts : {false, true}) {
    want(true);
    EXPECT_EQ(settings->flag(key), false);
    if (restarts) start(name, "GNOME");
    want(false);
    EXPECT_EQ(settings->userValue(key), std::nullopt);
  }
  ASSERT_TRUE(settings->setFlag(key, true));
  want(true);
  want(false);
  EXPECT_EQ(settings->userValue(key), "true") << "the user's word";
}

/// Budgie's switch. Answers from the event loop.
class BudgieStandIn final : public QDBusVirtualObject {
 public:
  explicit BudgieStandIn(bool on) : isOn(on) { bus_.registerVirtualObject(kPath, this); }
  ~BudgieStandIn() override { bus_.unregisterObject(kPath); }
  BudgieStandIn(const BudgieStandIn&) = delete;
  BudgieStandIn& operator=(const BudgieStandIn&) = delete;

  bool isOn;

  void turn() {
    isOn = !isOn;
    QDBusMessage change = QDBusMessage::createSignal(kPath, kInterface, "DoNotDisturbChanged");
    change.setArguments({isOn});
    bus_.send(change);
  }
  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*bus*/) override {
    if (message.interface() != kInterface) return false;
    const bool turns = message.member() == "ToggleDoNotDisturb";
    if (turns) turn();
    return bus_.send(message.createReply(turns ? QVariantList{} : QVariantList{isOn}));
  }

 private:
  static constexpr const char* kPath = "/org/budgie_desktop/Notifications";
  static constexpr const char* kInterface = "org.buddiesofbudgie.budgie.Dispatcher";

  QDBusConnection bus_{NotificationStandIn::kStandIn};
};

class BudgieTest : public SwitchTest {
 protected:
  BudgieTest() {
    start("Budgie Notification Server", "Budgie Desktop Developers",
          [this] { budgie.emplace(true); });
  }
  [[nodiscard]] bool becomes(bool on) {
    return soon([&] { return budgie->isOn == on && quiet.isOn() == on; });
  }

  std::optional<BudgieStandIn> budgie;
};

TEST_F(BudgieTest, IsTurnedRoundOnlyWhereItIsNotAsWanted) {
  ASSERT_TRUE(becomes(true));
  want(true);
  want(false);
  EXPECT_TRUE(becomes(false));
  want(false);
  want(true);
  EXPECT_TRUE(becomes(true));
  budgie->turn();
  EXPECT_TRUE(becomes(false)) << "by the user's hand";
  want(false);
  want(true);
  EXPECT_TRUE(becomes(true));
}

/// By a daemon that offers inhibitions, which is Plasma or unknown.
class InhibitionTest : public SwitchTest {
 protected:
  InhibitionTest() { start("Plasma", "KDE"); }
  [[nodiscard]] bool becomes(bool inhibited) {
    return soon([&] { return daemon->inhibitions.empty() != inhibited; });
  }
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
