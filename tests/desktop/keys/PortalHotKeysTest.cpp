#include "desktop/linux/keys/PortalHotKeys.h"

#include <gmock/gmock.h>

#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <filesystem>
#include <fstream>
#include <optional>

#include "desktop/harness/EventLoopTest.h"
#include "desktop/harness/PrivateHome.h"
#include "desktop/harness/SessionBus.h"
#include "desktop/linux/bus/BusObject.h"
#include "platform/carbon/CarbonEvents.h"
#include "platform/carbon/KeyCodes.h"

namespace {

using linux_desktop::BusObject;
using linux_desktop::PortalHotKeys;
using linux_desktop::PortalShortcut;
using platform::eventHotKeyExistsErr;
using platform::noErr;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kControlAlt = platform::controlKey | platform::optionKey;
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

/// The portal, as its clients see it. Its user gives each shortcut the keys that it asks for, when
/// told to.
class Portal {
 public:
  explicit Portal(const QString& address)
      : bus_(QDBusConnection::connectToBus(address, QStringLiteral("portal"))),
        object_(
            bus_, kPath,
            {{.name = kInterface,
              .methods = {{"CreateSession",
                           {{"a{sv}"}, {"o"}, [this](const auto& call) { return create(call); }}},
                          {"BindShortcuts",
                           {{"o", "a(sa{sv})", "s", "a{sv}"},
                            {"o"},
                            [this](const auto& call) { return bind(call); }}}},
              .properties = {},
              .emitted = {{"Activated", {"o", "s", "t", "a{sv}"}},
                          {"Deactivated", {"o", "s", "t", "a{sv}"}},
                          {"ShortcutsChanged", {"o", "a(sa{sv})"}}}},
             {.name = "org.freedesktop.host.portal.Registry",
              .methods = {{"Register",
                           {{"s", "a{sv}"},
                            {},
                            [this](const auto& call) {
                              app_ = call.arguments().at(0).toString();
                              return QVariantList();
                            }}}},
              .properties = {},
              .emitted = {}}}) {
    bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
  }
  ~Portal() {
    // Returns when the next one may have it.
    bus_.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
    QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
  }
  Portal(const Portal&) = delete;
  Portal& operator=(const Portal&) = delete;

  /// Ends the dialog that is open: these of the shortcuts asked for get the keys that they are
  /// described by.
  void answer(uint code, const std::map<QString, QString>& keys) {
    respond(*dialog_, code, {{"shortcuts", QVariant::fromValue(described(keys))}});
    dialog_.reset();
  }
  void press(const QString& id) { emitKey("Activated", id); }
  void release(const QString& id) { emitKey("Deactivated", id); }
  void change(const std::map<QString, QString>& keys) {
    object_.emitSignal("ShortcutsChanged", {QVariant::fromValue(QDBusObjectPath(session_)),
                                            QVariant::fromValue(described(keys))});
  }

  /// Says all of that of another program's.
  void speakOfAnother(const QString& id) {
    const QString own = std::exchange(session_, kPath + "/session/other");
    press(id);
    change({});
    respond(kPath + "/request/other", 0, {});
    session_ = own;
  }

  [[nodiscard]] bool asks() const { return dialog_.has_value(); }
  /// "Purpose 1: Control+Alt+p as CTRL+ALT+p", of the last dialog.
  [[nodiscard]] const std::vector<std::string>& wanted() const { return wanted_; }
  /// How many of its sessions have been closed.
  [[nodiscard]] int closed() const { return closed_; }

 private:
  static QList<PortalShortcut> described(const std::map<QString, QString>& keys) {
    QList<PortalShortcut> list;
    for (const auto& [id, text] : keys) list.append({id, {{"trigger_description", text}}});
    return list;
  }
  [[nodiscard]] QString handle(const QDBusMessage& call, const QString& kind,
                               const QString& token) {
    caller_ = call.service();
    return kPath + "/" + kind + "/" + caller_.mid(1).replace('.', '_') + "/" + token;
  }
  void respond(const QString& request, uint code, const QVariantMap& results) {
    QDBusMessage signal = QDBusMessage::createTargetedSignal(
        caller_, request, "org.freedesktop.portal.Request", "Response");
    signal.setArguments({code, results});
    bus_.send(signal);
  }
  // It gives nothing to programs that it does not know.
  QVariantList create(const QDBusMessage& call) {
    if (app_.isEmpty()) return {};
    const auto options = qdbus_cast<QVariantMap>(call.arguments().at(0));
    session_ = handle(call, "session", options.value("session_handle_token").toString());
    sessionObject_.emplace(bus_, session_, std::vector{closable()});
    const QString request = handle(call, "request", options.value("handle_token").toString());
    respond(request, 0, {{"session_handle", session_}});
    return {QVariant::fromValue(QDBusObjectPath(request))};
  }
  [[nodiscard]] linux_desktop::BusInterface closable() {
    const auto close = [this](const QDBusMessage&) {
      ++closed_;
      return QVariantList();
    };
    return {.name = "org.freedesktop.portal.Session",
            .methods = {{"Close", {{}, {}, close}}},
            .properties = {},
            .emitted = {}};
  }
  QVariantList bind(const QDBusMessage& call) {
    wanted_.clear();
    for (const auto& shortcut : qdbus_cast<QList<PortalShortcut>>(call.arguments().at(1))) {
      const auto detail = [&](const char* name) {
        return shortcut.details.value(name).toString().toStdString();
      };
      wanted_.push_back(detail("description") + ": " + shortcut.id.toStdString() + " as " +
                        detail("preferred_trigger"));
    }
    const auto options = qdbus_cast<QVariantMap>(call.arguments().at(3));
    dialog_ = handle(call, "request", options.value("handle_token").toString());
    return {QVariant::fromValue(QDBusObjectPath(*dialog_))};
  }
  void emitKey(const QString& name, const QString& id) {
    object_.emitSignal(
        name, {QVariant::fromValue(QDBusObjectPath(session_)), id, qulonglong{0}, QVariantMap()});
  }

  QDBusConnection bus_;
  BusObject object_;
  QString app_;
  QString caller_;
  QString session_;
  std::optional<BusObject> sessionObject_;
  int closed_ = 0;
  std::optional<QString> dialog_;
  std::vector<std::string> wanted_;
};

class PortalHotKeysTest : public harness::EventLoopTest<>, private platform::port::HotKeysClient {
 protected:
  PortalHotKeysTest() { keys.setClient(this); }
  ~PortalHotKeysTest() override { QDBusConnection::disconnectFromBus(QStringLiteral("program")); }

  void start() { portal.emplace(address); }
  void end() { portal.reset(); }
  [[nodiscard]] platform::OSStatus take(std::uint32_t number, std::uint32_t keyCode) {
    return keys.registerHotKey(number, keyCode, kControlAlt, "Purpose " + std::to_string(number));
  }
  /// Returns when what the portal has sent has come to the program, which has not yet looked at it.
  static void awaitArrival() {
    for (const char* each : {"portal", "program"}) {
      const QString bus = QStringLiteral("org.freedesktop.DBus");
      const auto answer = QDBusConnection(QLatin1String(each))
                              .call(QDBusMessage::createMethodCall(
                                  bus, QStringLiteral("/org/freedesktop/DBus"), bus, "GetId"));
      ASSERT_EQ(answer.type(), QDBusMessage::ReplyMessage);
    }
  }
  [[nodiscard]] bool hears(const std::vector<std::string>& expected) {
    const bool heard = soon([&] { return events.size() >= expected.size(); });
    EXPECT_EQ(events, expected);
    events.clear();
    return heard;
  }
  /// Registers "p" and "m", and has the user agree.
  void bindBoth() {
    ASSERT_EQ(take(1, platform::kVK_ANSI_P), noErr);
    ASSERT_EQ(take(2, platform::kVK_ANSI_M), noErr);
    ASSERT_TRUE(soon([&] { return portal->asks(); }));
    portal->answer(0, {{kP, "Ctrl+Alt+P"}, {kM, "Ctrl+Alt+M"}});
    ASSERT_TRUE(hears({"1 has Ctrl+Alt+P", "2 has Ctrl+Alt+M"}));
  }

  static inline const QString kP = QStringLiteral("Control+Alt+p");
  static inline const QString kM = QStringLiteral("Control+Alt+m");

  harness::PrivateHome home;
  harness::SessionBus bus{home, home.environment()};
  const QString address = QString::fromStdString(bus.address());
  // First: a program that sees it come would take it for one that has started anew.
  std::optional<Portal> portal{std::in_place, address};
  PortalHotKeys keys{QDBusConnection::connectToBus(address, QStringLiteral("program"))};
  std::vector<std::string> events;

 private:
  void hotKeyPressed(platform::port::HotKeyNumber number) override {
    events.push_back(std::to_string(number) + " down");
  }
  void hotKeyReleased(platform::port::HotKeyNumber number) override {
    events.push_back(std::to_string(number) + " up");
  }
  void hotKeyAssigned(platform::port::HotKeyNumber number,
                      const std::optional<std::string>& assigned) override {
    events.push_back(std::to_string(number) + " has " + assigned.value_or("none"));
  }
};

TEST_F(PortalHotKeysTest, BothAreAskedForAtOnceAndFire) {
  ASSERT_NO_FATAL_FAILURE(bindBoth());
  EXPECT_THAT(portal->wanted(), ElementsAre("Purpose 1: Control+Alt+p as CTRL+ALT+p",
                                            "Purpose 2: Control+Alt+m as CTRL+ALT+m"));
  EXPECT_EQ(take(3, platform::kVK_ANSI_P), eventHotKeyExistsErr);
  portal->press(kP);
  for (int time = 0; time < 2; ++time) portal->release(kP);
  portal->press(kM);
  portal->press("something else");
  portal->speakOfAnother(kP);
  portal->release(kM);
  EXPECT_TRUE(hears({"1 down", "1 up", "2 down", "2 up"}));
}

TEST_F(PortalHotKeysTest, TheListCountsAndNotTheCode) {
  ASSERT_EQ(take(1, platform::kVK_ANSI_P), noErr);
  ASSERT_TRUE(soon([&] { return portal->asks(); }));
  portal->speakOfAnother(kP);
  portal->answer(2, {{kP, "Press <Control><Alt>q"}});
  EXPECT_TRUE(hears({"1 has Ctrl+Alt+Q"}));
  portal->change({{kP, "Ctrl+Alt+X"}});
  EXPECT_TRUE(hears({"1 has Ctrl+Alt+X"}));
  portal->press(kP);
  EXPECT_TRUE(hears({"1 down"}));
}

TEST_F(PortalHotKeysTest, WhatTheUserRefusesIsWithdrawnAndMayBeAskedForAgain) {
  ASSERT_EQ(take(1, platform::kVK_ANSI_P), noErr);
  ASSERT_EQ(take(2, platform::kVK_ANSI_M), noErr);
  ASSERT_TRUE(soon([&] { return portal->asks(); }));
  portal->answer(0, {{kM, "Ctrl+Alt+M"}});
  EXPECT_TRUE(hears({"1 has none", "2 has Ctrl+Alt+M"}));
  EXPECT_EQ(take(3, platform::kVK_ANSI_P), noErr);
  ASSERT_TRUE(soon([&] { return portal->asks(); }));
  EXPECT_EQ(portal->closed(), 1);
  portal->answer(1, {});
  EXPECT_TRUE(hears({"2 has none", "3 has none"}));
}

TEST_F(PortalHotKeysTest, AnAnswerToWhatWasGivenBackMeanwhileSaysNothing) {
  ASSERT_EQ(take(1, platform::kVK_ANSI_P), noErr);
  ASSERT_TRUE(soon([&] { return portal->asks(); }));
  keys.unregisterHotKey(1);
  portal->answer(0, {{kP, "Ctrl+Alt+P"}});
  ASSERT_EQ(take(2, platform::kVK_ANSI_M), noErr);
  awaitArrival();
  ASSERT_TRUE(soon([&] { return portal->asks(); }));
  EXPECT_THAT(portal->wanted(), ElementsAre("Purpose 2: Control+Alt+m as CTRL+ALT+m"));
  portal->answer(0, {{kM, "Ctrl+Alt+M"}});
  EXPECT_TRUE(hears({"2 has Ctrl+Alt+M"}));
  portal->press(kP);
  portal->press(kM);
  EXPECT_TRUE(hears({"2 down"}));
}

TEST_F(PortalHotKeysTest, OneThatEndsIsStartedAndOneThatStartsAnewIsAskedAgain) {
  ASSERT_NO_FATAL_FAILURE(bindBoth());
  const std::filesystem::path started = home.home() / "started";
  const std::filesystem::path program = home.home() / "portal";
  std::ofstream(program) << "#!/bin/sh\ntouch " << started << '\n';
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  bus.offer("org.freedesktop.portal.Desktop", program);
  end();
  EXPECT_TRUE(soon([&] { return std::filesystem::exists(started); }));
  start();
  ASSERT_TRUE(soon([&] { return portal->asks(); }));
  EXPECT_THAT(events, IsEmpty());
  portal->answer(0, {{kP, "Ctrl+Alt+P"}, {kM, "Ctrl+Alt+M"}});
  EXPECT_TRUE(hears({"1 has Ctrl+Alt+P", "2 has Ctrl+Alt+M"}));
  portal->press(kP);
  EXPECT_TRUE(hears({"1 down"}));
}

TEST_F(PortalHotKeysTest, IsAskedAgainWhenTheDesktopsProgramBehindItEnds) {
  const QString backend = QStringLiteral("org.freedesktop.impl.portal.desktop.some");
  QDBusConnection::connectToBus(address, QStringLiteral("backend")).registerService(backend);
  ASSERT_NO_FATAL_FAILURE(bindBoth());
  QDBusConnection::disconnectFromBus(QStringLiteral("backend"));
  ASSERT_TRUE(soon([&] { return portal->asks(); }));
  portal->answer(0, {{kP, "Ctrl+Alt+P"}, {kM, "Ctrl+Alt+M"}});
  EXPECT_TRUE(hears({"1 has Ctrl+Alt+P", "2 has Ctrl+Alt+M"}));
}

}  // namespace
