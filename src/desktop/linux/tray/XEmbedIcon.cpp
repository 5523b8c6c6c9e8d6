#include "desktop/linux/tray/XEmbedIcon.h"

#include <QApplication>
#include <QMouseEvent>
#include <utility>

namespace linux_desktop {

XEmbedIcon::XEmbedIcon(const StatusImage& image, Reports reports) : reports_(std::move(reports)) {
  setImage(image);
  connect(&icon_, &QSystemTrayIcon::activated, this,
          [this](QSystemTrayIcon::ActivationReason reason) {
            // The second of two quick clicks comes as a double click only.
            if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) {
              reports_.activated();
            }
            if (reason == QSystemTrayIcon::Context) reports_.menuAsked();
          });
  qApp->installEventFilter(this);
  icon_.show();
}

/// Qt 6 drops the second of two quick clicks with the right button.
bool XEmbedIcon::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonDblClick && watched->inherits("QSystemTrayIconSys") &&
      static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
    reports_.menuAsked();
  }
  return false;
}

}  // namespace linux_desktop
