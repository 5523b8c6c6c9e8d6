#pragma once

#include <QSystemTrayIcon>
#include <functional>

#include "desktop/linux/tray/StatusImages.h"

namespace linux_desktop {

/// Our icon in a tray of the old X11 protocol.
///
/// Make it only while there is no StatusNotifierHost: QSystemTrayIcon looks for one once in the
/// life of the process, waits for its answer, and then stays with the protocol that it found.
class XEmbedIcon : private QObject {
 public:
  struct Reports {
    std::function<void()> activated;
    std::function<void()> menuAsked;
  };

  XEmbedIcon(const StatusImage& image, Reports reports);

  void setImage(const StatusImage& image) { icon_.setIcon(image.icon); }
  void setToolTip(const QString& text) { icon_.setToolTip(text); }
  /// On the screen, in Qt's coordinates; empty while the tray has not taken the icon.
  [[nodiscard]] QRect geometry() const { return icon_.geometry(); }

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;

  Reports reports_;
  QSystemTrayIcon icon_;
};

}  // namespace linux_desktop
