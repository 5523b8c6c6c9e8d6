#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QVariantList>
#include <chrono>
#include <climits>
#include <functional>
#include <optional>

#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

class QDBusPendingCallWatcher;

namespace linux_desktop {

/// How long anything is waited for before it counts as hanging.
inline constexpr std::chrono::milliseconds kBusPatience{500};
/// The limit of a question that may stay open for ever; such an answer says that a peer goes on.
inline constexpr int kNoLimit = INT_MAX;

/// A method call that never starts a service.
[[nodiscard]] QDBusMessage busCall(const QString& service, const QString& path,
                                   const QString& interface, const QString& method,
                                   const QVariantList& arguments = {});

/// Sends `call` and returns at once. `answered` gets the reply or the error, from the event loop or
/// from the question's own waitForFinished(), unless `asker` is gone by then. The question deletes
/// itself after that. `limit` is in milliseconds.
QDBusPendingCallWatcher* ask(const QDBusConnection& bus, const QDBusMessage& call, QObject* asker,
                             std::function<void(const QDBusMessage& answer)> answered,
                             int limit = kNoLimit);

[[nodiscard]] bool isError(const QDBusMessage& answer);
/// True when no answer came within the question's limit.
[[nodiscard]] bool ranOut(const QDBusMessage& answer);

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
