// Do Not Disturb over stand-ins: the settings that shells read which show notifications themselves,
// Budgie's switch, which can only be turned round, and inhibitions.

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <functional>
#include <optional>

#include "desktop/linux/bus/BusObject.h"
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

TEST_F(SwitchTest, SettingsOfAShellAreSwitchedAndUnsetAgainWhereNobodyHadSetThem) {
  const QTemporaryDir folder;
  qputenv("GSETTINGS_BACKEND", "keyfile");
  qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
  qputenv("XDG_STATE_HOME", folder.path().toUtf8());
  const struct {
    const char* shell;
    const char* schema;
    const char* key;
  } rows[] = {{"cinnamon", "org.cinnamon.desktop.notifications", "display-notifications"},
              {"gnome-shell", "org.gnome.desktop.notifications", "show-banners"}};
  for (const auto& [shell, schema, key] : rows) {
    SCOPED_TRACE(shell);
    const auto settings = linux_desktop::GuardedSettings::open(schema, {key});
    ASSERT_TRUE(settings) << schema << " is not installed";
    ASSERT_TRUE(settings->setUserValue(key, std::nullopt));
    start(shell, "GNOME");
    for (const bool restarts : {false, true}) {
      want(true);
      EXPECT_EQ(settings->flag(key), false);
      if (restarts) start(shell, "GNOME");
      want(false);
      EXPECT_EQ(settings->userValue(key), std::nullopt);
    }
    for (const bool byHand : {false, true}) {
      ASSERT_TRUE(settings->setFlag(key, !byHand));
      want(true);
      EXPECT_EQ(settings->flag(key), false);
      ASSERT_TRUE(settings->setFlag(key, byHand));
      want(false);
      EXPECT_EQ(settings->userValue(key), "true") << "the user's word stays one";
    }
  }
}

const QString kBudgiePath = QStringLiteral("/org/budgie_desktop/Notifications");
const QString kBudgie = QStringLiteral("org.buddiesofbudgie.budgie.Dispatcher");
const QString kBudgieChanged = QStringLiteral("DoNotDisturbChanged");

/// Budgie's switch.
class BudgieStandIn {
 public:
  bool isOn = true;

  void turn() {
    isOn = !isOn;
    object_.emitSignal(kBudgieChanged, {isOn});
  }

 private:
  linux_desktop::BusObject object_{
      QDBusConnection(NotificationStandIn::kStandIn),
      kBudgiePath,
      {{.name = kBudgie,
        .methods = {{"GetDoNotDisturb",
                     {{}, {"b"}, [this](const auto&) { return QVariantList{isOn}; }}},
                    {"ToggleDoNotDisturb",
                     {{},
                      {},
                      [this](const auto&) {
                        turn();
                        return QVariantList();
                      }}}},
        .properties = {},
        .emitted = {{kBudgieChanged, {"b"}}}}}};
};

class BudgieTest : public SwitchTest {
 protected:
  BudgieTest() {
    start("Budgie Notification Server", "Budgie Desktop Developers", [this] { budgie.emplace(); });
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
  QDBusMessage lie = QDBusMessage::createSignal(kBudgiePath, kBudgie, kBudgieChanged);
  lie.setArguments({true});
  sendAsAnother(lie);
  (void)QDBusConnection("ours").interface()->isServiceRegistered("");
  QCoreApplication::processEvents();
  EXPECT_FALSE(quiet.isOn()) << "said by another";
  budgie->turn();
  EXPECT_TRUE(becomes(true)) << "by the user's hand";
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
