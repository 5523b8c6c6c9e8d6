// Do Not Disturb of the shells that show notifications themselves: the settings that they read, and
// Budgie's switch, which can only be turned round.

#include <gtest/gtest.h>

#include <QDBusVirtualObject>
#include <QTemporaryDir>
#include <memory>
#include <optional>

#include "desktop/harness/SessionBus.h"
#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/notifications/DaemonDoNotDisturb.h"
#include "desktop/notifications/NotificationStandIn.h"

namespace {

/// A bus, and on it whoever shows notifications.
class ShellSwitchTest : public NotifierTest {
 protected:
  using State = linux_desktop::NotificationDaemon::State;

  ~ShellSwitchTest() override { QDBusConnection::disconnectFromBus("ours"); }

  [[nodiscard]] bool isKnown() {
    return soon([this] { return known.state() == State::Known; });
  }
  /// As the script turns it: by a click, where it is not as wanted.
  void want(bool on) {
    EXPECT_TRUE(quiet.exists());
    EXPECT_TRUE(quiet.isOn() == on || quiet.set(on));
  }

 private:
  harness::PrivateHome home_;
  harness::SessionBus bus_{home_, home_.environment()};

 protected:
  const QString address = QString::fromStdString(bus_.address());
  std::optional<NotificationStandIn> daemon;
  linux_desktop::NotificationDaemon known{QDBusConnection::connectToBus(address, "ours")};
  linux_desktop::DaemonDoNotDisturb quiet{known};
};

struct Shell {
  const char* name;
  const char* schema;
  const char* key;
};

class SettingsOfAShell : public ShellSwitchTest, public testing::WithParamInterface<Shell> {
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
  daemon.emplace(address, name, "GNOME");
  ASSERT_TRUE(isKnown());
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
  daemon.emplace(address, name, "GNOME");
  ASSERT_TRUE(isKnown());
  for (const bool restarts : {false, true}) {
    want(true);
    EXPECT_EQ(settings->flag(key), false);
    if (restarts) {
      daemon.reset();
      ASSERT_TRUE(soon([this] { return known.state() == State::None; }));
      daemon.emplace(address, name, "GNOME");
      ASSERT_TRUE(isKnown());
    }
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

class BudgieTest : public ShellSwitchTest {
 protected:
  void runBudgie(bool on) {
    daemon.emplace(address, "Budgie Notification Server", "Budgie Desktop Developers");
    // On the daemon's connection.
    budgie.emplace(on);
    EXPECT_TRUE(isKnown());
  }
  [[nodiscard]] bool becomes(bool on) {
    return soon([&] { return budgie->isOn == on && quiet.isOn() == on; });
  }

  std::optional<BudgieStandIn> budgie;
};

TEST_F(BudgieTest, IsTurnedRoundOnlyWhereItIsNotAsWanted) {
  runBudgie(true);
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

}  // namespace
