#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <optional>

#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

/// What the adapters that speak over the bus have in common: which word on the state counts.
/// Nothing waits but settle(). A write that a hanging daemon does not answer stays in its queue and
/// comes into force when it goes on, in order with those after it, so that the last one holds.
class BusAdapter : public QObject, public DoNotDisturbAdapter {
  Q_OBJECT

 public:
  [[nodiscard]] std::optional<bool> isOn() override { return state_; }
  void settle() override;

 protected:
  BusAdapter(QDBusConnection bus, const NotificationDaemonIdentity& daemon);

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

}  // namespace linux_desktop
