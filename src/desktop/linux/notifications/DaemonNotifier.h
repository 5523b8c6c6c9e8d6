#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <optional>
#include <string>
#include <string_view>

#include "desktop/linux/bus/BusSignal.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

/// Shows the user short texts as notifications. Main thread only; nothing here waits.
class Notifier {
 public:
  virtual ~Notifier() = default;

  /// Asks for the text to be shown, in the place of the one before where that is still there. Why
  /// not, as a sentence, where it is known at once that nobody will show it.
  [[nodiscard]] virtual std::optional<std::string> show(std::string_view text) = 0;
};

/// Notifications through whatever shows them at the time, started by the bus where that is how this
/// desktop does it. There is one at most on the screen, and one call on its way: of the texts that
/// come meanwhile only the newest is sent, when that one has been answered. A daemon that hangs
/// gets them when it goes on. A notification that nobody took costs one line, as does a daemon that
/// does not answer; the next success ends the silence.
///
/// Of ordinary urgency, so that Do Not Disturb keeps them off a shared screen.
class DaemonNotifier final : public QObject, public Notifier {
 public:
  /// `daemon` must outlive this.
  explicit DaemonNotifier(NotificationDaemon& daemon);

  [[nodiscard]] std::optional<std::string> show(std::string_view text) override;

 private:
  void send(const QString& text);
  void takeAnswer(const QDBusMessage& answer);
  void remember(const QString& owner, uint id);
  void forget();
  void complain(const QString& why);

  NotificationDaemon& daemon_;
  QString owner_;  // who shows ours, while it can be replaced
  uint id_ = 0;    // 0: none
  std::optional<BusSignal> closed_;
  bool unanswered_ = false;
  std::optional<QString> next_;
  bool complained_ = false;
  OneShot hanging_;
};

}  // namespace linux_desktop
