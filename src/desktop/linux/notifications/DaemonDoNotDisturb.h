#pragma once

#include <QObject>
#include <QString>
#include <memory>

#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

/// Do Not Disturb of whatever shows notifications at the time. While nothing does but something can
/// be started, or while it has not said yet who it is, the wish is kept and carried out when it
/// appears; a switch that needs no running daemon is turned at once all the same. A wish for quiet
/// also is when it is restarted, until anybody switches it off.
class DaemonDoNotDisturb final : public QObject, public DoNotDisturbSwitch {
  Q_OBJECT

 public:
  /// A reason why there is no such switch.
  struct Obstacle;
  /// A kind of daemon, and what switches those.
  struct Kind;

  /// `daemon` must outlive this.
  explicit DaemonDoNotDisturb(NotificationDaemon& daemon);

  [[nodiscard]] bool exists() override;
  [[nodiscard]] bool isOn() override;
  [[nodiscard]] bool set(bool on) override;

  /// Why there is no such switch, for users to read, in half a sentence; empty where there is one
  /// or that is not known yet. Does not wait.
  [[nodiscard]] QString obstacleForUser() const;

 Q_SIGNALS:
  /// It may be another now.
  void obstacleChanged();

 private:
  void readDaemon();
  void followDaemon();
  void followNobody();
  /// Null: what switches that kind is not there.
  void follow(const Kind& kind, std::unique_ptr<DoNotDisturbAdapter> adapter);
  /// Null where nothing is in the way.
  [[nodiscard]] const Obstacle* obstacle() const;

  NotificationDaemon& daemon_;
  std::unique_ptr<DoNotDisturbAdapter> adapter_;
  /// Whose it is.
  const Kind* kind_ = nullptr;
  const Obstacle* whyNoAdapter_ = nullptr;
  bool wish_ = false;
  bool wishIsOwed_ = false;  // clicked while there was nobody to tell
  bool complained_ = false;
};

}  // namespace linux_desktop
