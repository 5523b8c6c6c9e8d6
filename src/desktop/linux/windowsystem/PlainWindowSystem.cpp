#include "desktop/linux/windowsystem/PlainWindowSystem.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QScreen>
#include <vector>

namespace linux_desktop {
namespace {

Q_LOGGING_CATEGORY(lcWindowSystem, "calmdeck.windowsystem", QtWarningMsg)

std::vector<Monitor> monitorsOfQt() {
  std::vector<Monitor> monitors;
  for (const QScreen* screen : QGuiApplication::screens()) {
    monitors.push_back({screen->name(), screen->geometry()});
  }
  return monitors;
}

}  // namespace

PlainWindowSystem::PlainWindowSystem() : pictures_(&monitorsOfQt, nullptr) {
  qCWarning(lcWindowSystem,
            "on %s desktop icons are not covered, other applications are not hidden, and shortcuts "
            "fire only where the desktop itself keeps them; the rest works",
            qPrintable(QGuiApplication::platformName()));
}

}  // namespace linux_desktop
