#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "desktop/harness/EventLoopTest.h"
#include "desktop/harness/SessionBus.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

/// What shows notifications, as a list in memory: under its name on the bus while it lives. Answers
/// from the event loop.
class NotificationStandIn final : public QDBusVirtualObject {
 public:
  struct Notification {
    QString application;
    uint replaces = 0;
    QString icon;
    QString summary;
    QString body;
    QVariantMap hints;
    uint id = 0;
  };

  /// `name` and `vendor` are what it says of itself.
  explicit NotificationStandIn(const QString& address, QString name = QStringLiteral("stand-in"),
                               QString vendor = QStringLiteral("nobody"))
      : name_(std::move(name)),
        vendor_(std::move(vendor)),
        bus_(QDBusConnection::connectToBus(address, kStandIn)) {
    bus_.registerVirtualObject(kPath, this);
    bus_.registerService(kName);
  }
  ~NotificationStandIn() override {
    bus_.unregisterObject(kPath);
    QDBusConnection::disconnectFromBus(kStandIn);
  }
  NotificationStandIn(const NotificationStandIn&) = delete;
  NotificationStandIn& operator=(const NotificationStandIn&) = delete;

  /// Every call of Notify, in order.
  std::vector<Notification> calls;
  /// The ids on the screen.
  std::set<uint> shown;
  /// Those who want quiet. It offers that always.
  std::set<uint> inhibitions;
  /// While set, Notify is not answered; release() does it later.
  bool hangs = false;
  bool refuses = false;

  void release() {
    hangs = false;
    for (const QDBusMessage& message : std::exchange(owed_, {})) answer(message);
  }
  void close(uint id) {
    shown.erase(id);
    bus_.send(closed(id));
  }
  /// As it says that.
  [[nodiscard]] static QDBusMessage closed(uint id) {
    QDBusMessage signal = QDBusMessage::createSignal(kPath, kName, "NotificationClosed");
    signal.setArguments({id, 1U});
    return signal;
  }

  /// As anybody may, or the user by hand.
  void inhibit(std::set<uint> wanted) {
    const bool before = !inhibitions.empty();
    inhibitions = std::move(wanted);
    if (before != inhibitions.empty()) return;
    QDBusMessage change =
        QDBusMessage::createSignal(kPath, "org.freedesktop.DBus.Properties", "PropertiesChanged");
    change.setArguments({kName, QVariantMap{{"Inhibited", !inhibitions.empty()}}, QStringList()});
    bus_.send(change);
  }

  /// Its connection to the bus, by Qt's name.
  static constexpr const char* kStandIn = "stand-in";

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*bus*/) override {
    if (message.member() == "GetServerInformation")
      return bus_.send(message.createReply(QVariantList{name_, vendor_, "1", "1.2"}));
    if (message.member() == "GetCapabilities")
      return bus_.send(
          message.createReply(QVariantList{QStringList{"body", "body-markup", "inhibitions"}}));
    const bool takes = message.member() == "Inhibit";
    if (takes || message.member() == "UnInhibit") {
      std::set<uint> wanted = inhibitions;
      if (takes) wanted.insert(++lastId_);
      if (!takes) wanted.erase(message.arguments().value(0).toUInt());
      inhibit(std::move(wanted));
      return bus_.send(message.createReply(takes ? QVariantList{lastId_} : QVariantList{}));
    }
    note(message.arguments());
    if (hangs) {
      owed_.push_back(message);
    } else if (refuses) {
      bus_.send(message.createErrorReply("org.calmdeck.Refused", "no more of these"));
    } else {
      answer(message);
    }
    return true;
  }

 private:
  void note(const QVariantList& arguments) {
    calls.push_back({.application = arguments.value(0).toString(),
                     .replaces = arguments.value(1).toUInt(),
                     .icon = arguments.value(2).toString(),
                     .summary = arguments.value(3).toString(),
                     .body = arguments.value(4).toString(),
                     .hints = qdbus_cast<QVariantMap>(arguments.value(6))});
    calls.back().id = shown.contains(calls.back().replaces) ? calls.back().replaces : ++lastId_;
  }
  void answer(const QDBusMessage& message) {
    shown.insert(calls.back().id);
    bus_.send(message.createReply(QVariantList{calls.back().id}));
  }

  static constexpr const char* kName = "org.freedesktop.Notifications";
  static constexpr const char* kPath = "/org/freedesktop/Notifications";

  QString name_;
  QString vendor_;
  QDBusConnection bus_;
  std::vector<QDBusMessage> owed_;
  uint lastId_ = 0;
};

/// A bus, and on it whoever shows notifications.
class NotificationsTest : public harness::EventLoopTest<> {
 private:
  harness::PrivateHome home_;
  harness::SessionBus bus_{home_, home_.environment()};

 protected:
  using State = linux_desktop::NotificationDaemon::State;

  /// Sends that from a connection of nobody's; it is on its way to all others afterwards.
  void sendAsAnother(const QDBusMessage& signal) const {
    QDBusConnection other = QDBusConnection::connectToBus(address, "other");
    other.send(signal);
    (void)other.interface()->isServiceRegistered(signal.interface());
    QDBusConnection::disconnectFromBus("other");
  }

  const QString address = QString::fromStdString(bus_.address());
  std::optional<NotificationStandIn> daemon;
};
