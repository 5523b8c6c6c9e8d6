#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>
#include <functional>
#include <optional>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/bus/XfconfChannel.h"
#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

/// What the adapters that speak over the bus have in common: which word on the state counts.
/// Nothing waits but settle(). A write that a hanging daemon does not answer stays in its queue and
/// comes into force when it goes on, in order with those after it, so that the last one holds.
class BusDoNotDisturb : public QObject, public DoNotDisturbAdapter {
  Q_OBJECT

 public:
  [[nodiscard]] std::optional<bool> isOn() override { return state_; }
  void settle() override;

 protected:
  BusDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);

  [[nodiscard]] const QDBusConnection& bus() const { return bus_; }

  /// The question for the state, and the state that an answer or an error to it means.
  [[nodiscard]] virtual QDBusMessage stateQuestion() const = 0;
  [[nodiscard]] virtual std::optional<bool> stateIn(const QDBusMessage& answer) const = 0;

  /// Asks for the state in a constructor; waited for by settle().
  void readFirst();
  void read();
  /// Sends a change that leads to `on`. `done` gets the answer, be it an error.
  void write(const QDBusMessage& change, bool on,
             std::function<void(const QDBusMessage&)> done = {});
  /// The state that a change will lead to which can only be sent later.
  void assume(bool on) { state_ = on; }
  /// The daemon says by itself what the state is.
  void heard(bool on);

 private:
  void takeAnswer(const QDBusMessage& answer);

  QDBusConnection bus_;
  QDeadlineTimer patience_;
  std::optional<bool> state_;
  int unansweredWrites_ = 0;
  QPointer<QDBusPendingCallWatcher> firstRead_;
  QTimer hanging_;
};

/// xfce4-notifyd: a property of the Xfce settings, which the daemon follows at once and which
/// outlasts both it and us.
class XfceDoNotDisturb final : public BusDoNotDisturb {
  Q_OBJECT

 public:
  XfceDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;
  [[nodiscard]] bool outlivesDaemon() const override { return true; }

 protected:
  [[nodiscard]] QDBusMessage stateQuestion() const override;
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) const override;

 private:
  XfconfChannel channel_{QStringLiteral("xfce4-notifyd")};
};

/// Where a daemon has its state, as D-Bus properties.
struct StateProperties {
  const char* interface;
  /// A flag, or a level of which any but 0 is on; where a daemon has both, the first counts.
  const char* read;
  const char* otherwise = nullptr;
};

/// A daemon whose state is in properties that it says the changes of.
class PropertyDoNotDisturb : public BusDoNotDisturb {
  Q_OBJECT

 protected:
  PropertyDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon,
                       const StateProperties& properties);

  [[nodiscard]] QDBusMessage toDaemon(const QString& interface, const QString& method,
                                      const QVariantList& arguments) const;

  [[nodiscard]] QDBusMessage stateQuestion() const override;
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) const override;

 private:
  Q_SLOT void propertiesChanged(const QString& interface, const QVariantMap& changed,
                                const QStringList& invalidated);
  /// None when the properties, which may be some of all, do not tell.
  [[nodiscard]] std::optional<bool> stateOf(const QVariantMap& properties) const;

  QString owner_;
  StateProperties properties_;
};

/// dunst, which forgets its state when it ends.
class DunstDoNotDisturb final : public PropertyDoNotDisturb {
  Q_OBJECT

 public:
  DunstDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;
};

/// swaync, which keeps its state across restarts. Its inhibitors are not used: older versions have
/// none, and one would outlast us where nothing shows it.
class SwayncDoNotDisturb final : public BusDoNotDisturb {
  Q_OBJECT

 public:
  SwayncDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;

 protected:
  [[nodiscard]] QDBusMessage stateQuestion() const override;
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) const override;

 private:
  Q_SLOT void told(uint notifications, bool on, bool isOpen);

  QString owner_;
};

/// Budgie's, which only takes to be turned round; so it is asked for its state before the first
/// time, and known by its own word after that.
class BudgieDoNotDisturb final : public BusDoNotDisturb {
  Q_OBJECT

 public:
  BudgieDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;

 protected:
  [[nodiscard]] QDBusMessage stateQuestion() const override;
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) const override;

 private:
  Q_SLOT void told(bool on) { heard(on); }

  QString owner_;
};

/// Plasma, and whatever else offers inhibitions: each program that wants quiet holds one of its
/// own, and it is quiet while there is any. On is whether we hold ours, so that it stays quiet when
/// the others' end; nobody else's can be ended. Ours ends with our connection to the bus, and when
/// the user ends all.
class InhibitionDoNotDisturb final : public PropertyDoNotDisturb {
  Q_OBJECT

 public:
  InhibitionDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] std::optional<bool> isOn() override;
  [[nodiscard]] bool set(bool on) override;

 private:
  void inhibit();
  void release();

  bool wanted_ = false;
  bool inhibiting_ = false;  // asked for, the ticket is not here yet
  std::optional<uint> ticket_;
};

}  // namespace linux_desktop
