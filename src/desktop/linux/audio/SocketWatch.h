#pragma once

#include <QDateTime>
#include <QFileInfo>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/loop/OneShot.h"

namespace linux_desktop {

/// Says when a new socket of the user's sound server appears:
/// $PULSE_RUNTIME_PATH/native or $XDG_RUNTIME_DIR/pulse/native. Asleep in between, and without any
/// watch while stopped. Where neither variable is set, or a server is only reached over the
/// network, nothing is watched. Main thread, which runs an event loop.
class SocketWatch : public QObject {
 public:
  /// `appeared` is called from the event loop.
  explicit SocketWatch(std::function<void()> appeared);

  /// Notes the socket that is about to be tried: that one does not count as new.
  void attempting() { tried_ = present(); }
  /// A socket that came since attempting() counts.
  void start();
  void stop();

 private:
  /// When the socket that is there was made, which tells it from others at its path; invalid where
  /// there is none.
  [[nodiscard]] QDateTime present() const { return QFileInfo(socket_).metadataChangeTime(); }
  void look();

  QString socket_;  // empty: nothing to watch
  QDateTime tried_;
  std::unique_ptr<FileWatch> watch_;
  OneShot settle_;
};

}  // namespace linux_desktop
