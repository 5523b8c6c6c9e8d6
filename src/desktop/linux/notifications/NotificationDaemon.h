#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <optional>

#include "desktop/linux/bus/BusSignal.h"

class QDBusPendingCallWatcher;

namespace linux_desktop {

// What shows notifications, on the bus.
inline const QString kNotifications = QStringLiteral("org.freedesktop.Notifications");
inline const QString kNotificationsPath = QStringLiteral("/org/freedesktop/Notifications");

/// What a program that shows notifications says of itself.
struct NotificationDaemonIdentity {
  QString owner;  // its own bus name, another after each restart
  QString name;
  QString vendor;
  QStringList capabilities;
  QDeadlineTimer patience;  // until when a question that the identity leads to may be waited for
};

/// Who shows notifications on this desktop: asked once an owner of the bus name, and kept current
/// by the bus's own signals. Nothing here starts a daemon.
class NotificationDaemon : public QObject {
  Q_OBJECT

 public:
  enum class State : std::uint8_t {
    Asking,  // no answer yet, and no half second has passed
    None,    // nobody owns the name, or there is no bus
    Silent,  // there is one that has owed an answer for half a second
    Known,   // identity() holds
  };

  explicit NotificationDaemon(QDBusConnection bus);

  [[nodiscard]] State state() const { return state_; }
  [[nodiscard]] const NotificationDaemonIdentity& identity() const { return identity_; }
  [[nodiscard]] bool hasBus() const { return bus_.isConnected(); }
  /// In state None: whether the first notification would start one.
  [[nodiscard]] bool canBeStarted() const { return canBeStarted_; }
  [[nodiscard]] const QDBusConnection& bus() const { return bus_; }

  /// Blocks until the state is none of Asking: half a second at most from when it became that.
  void settle();

 Q_SIGNALS:
  /// Another state, or another daemon.
  void changed();

 private:
  void lookForOwner();
  void takeOwner(const QString& owner);
  void askWhatCanBeStarted();
  void askWhoItIs();
  /// One that does not answer in time counts as silent, and is asked once more.
  void askDaemon(const QString& method, std::function<void(const QDBusMessage&)> take);
  /// For as long as the owner stays the same.
  void question(const QDBusMessage& call, std::function<void(const QDBusMessage&)> answered);
  void setState(State state);

  QDBusConnection bus_;
  NotificationDaemonIdentity identity_;
  State state_ = State::Asking;
  bool canBeStarted_ = false;
  int owners_ = 0;
  QPointer<QDBusPendingCallWatcher> open_;
  std::optional<BusSignal> startableChanged_;
};

}  // namespace linux_desktop
