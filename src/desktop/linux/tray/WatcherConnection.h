#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <cstdint>
#include <optional>

#include "desktop/linux/bus/BusSignal.h"
#include "desktop/linux/loop/OneShot.h"

namespace linux_desktop {

/// What is known of the desktop's StatusNotifierWatcher, kept current by the bus's own signals. A
/// watcher that comes late, goes, restarts, stops answering or goes on again is an ordinary event.
class WatcherConnection : public QObject {
  Q_OBJECT

 public:
  enum class State : std::uint8_t {
    Asking,     // no answer yet, and no half second has passed
    NoWatcher,  // nobody owns the name, or there is no bus
    Silent,     // it has owed an answer for half a second
    NoHost,     // it answers, but nobody draws icons
    Ready,      // icons are drawn
  };

  explicit WatcherConnection(QDBusConnection connection);

  [[nodiscard]] State state() const { return state_; }
  /// The watcher's own bus name, which is another after each restart; empty when there is none.
  [[nodiscard]] const QString& owner() const { return owner_; }

 Q_SIGNALS:
  void stateChanged();
  /// There is a watcher that knows nothing of us yet.
  void watcherAppeared();

 private:
  void lookForOwner();
  void takeOwner(const QString& owner);
  void askForHost();
  void setState(State state);

  QDBusConnection connection_;
  QString owner_;
  State state_ = State::Asking;
  std::optional<BusSignal> hostComes_;
  std::optional<BusSignal> hostGoes_;
  OneShot patience_;
};

}  // namespace linux_desktop
