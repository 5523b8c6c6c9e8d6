#include "desktop/linux/tray/XEmbedIcon.h"

namespace linux_desktop {

XEmbedIcon::XEmbedIcon(const StatusImage& image, const Reports& reports) {
  setImage(image);
  icon_.setToolTip("Calmdeck");
  QObject::connect(
      &icon_, &QSystemTrayIcon::activated, &icon_,
      [reports](QSystemTrayIcon::ActivationReason reason) {
        // The second of two quick clicks comes as a double click only.
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
          reports.activated();
        if (reason == QSystemTrayIcon::Context) reports.menuAsked();
      });
  icon_.show();
}

}  // namespace linux_desktop
