#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

/// How a daemon tells of its state on the bus, and takes another.
struct BusSwitch {
  /// Asks for the state.
  QDBusMessage question;
  /// The state as an answer or a signal has it; none where it does not say.
  std::function<std::optional<bool>(const QVariant& told)> stateOf;
  /// What leads to a state.
  std::function<QDBusMessage(bool on)> change;
  /// The signal of the same object and interface that tells of changes, and the place of the state
  /// among its values; only with these texts at the beginning of those.
  QString signal = {};
  qsizetype placeInSignal = 0;
  QStringList signalBegins = {};
};

/// A daemon that speaks over the bus. Nothing waits but settle(). A write that a hanging daemon
/// does not answer stays in its queue and comes into force when it goes on, in order with those
/// after it, so that the last one holds.
class BusDoNotDisturb : public QObject, public DoNotDisturbAdapter {
  Q_OBJECT

 public:
  BusDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon, BusSwitch way);

  [[nodiscard]] std::optional<bool> isOn() override { return state_; }
  [[nodiscard]] bool set(bool on) override;
  void settle() override;

  /// Asks for the state at the start; waited for by settle().
  void readFirst();

 protected:
  /// The state that an answer or an error to the question means.
  [[nodiscard]] virtual std::optional<bool> stateIn(const QDBusMessage& answer) const;
  /// Sends a change that leads to `on`. `done` gets the answer, be it an error.
  void write(const QDBusMessage& change, bool on,
             std::function<void(const QDBusMessage&)> done = {});
  /// The state that a change will lead to which can only be sent later.
  void assume(bool on) { state_ = on; }
  /// The daemon says by itself what the state is.
  void heard(bool on);

 private:
  Q_SLOT void told(const QDBusMessage& signal);
  void read();
  void takeAnswer(const QDBusMessage& answer);

  QDBusConnection bus_;
  BusSwitch way_;
  QDeadlineTimer patience_;
  std::optional<bool> state_;
  int unansweredWrites_ = 0;
  QPointer<QDBusPendingCallWatcher> firstRead_;
  OneShot hanging_;
};

// The daemons, each as DaemonDoNotDisturb's table has it made.

/// xfce4-notifyd: a property of the Xfce settings, which the daemon follows at once and which
/// outlasts both it and us.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> xfceDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
/// dunst, which forgets its state when it ends.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> dunstDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
/// swaync, which keeps its state across restarts. Its inhibitors are not used: older versions have
/// none, and one would outlast us where nothing shows it.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> swayncDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
/// Budgie's, which only takes to be turned round; so it is asked for its state before the first
/// time, and known by its own word after that.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> budgieDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
/// Plasma, and whatever else offers inhibitions: each program that wants quiet holds one of its
/// own, and it is quiet while there is any. On is whether we hold ours, so that it stays quiet when
/// the others' end; nobody else's can be ended. Ours ends with our connection to the bus, and when
/// the user ends all.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> inhibitionDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);

}  // namespace linux_desktop
