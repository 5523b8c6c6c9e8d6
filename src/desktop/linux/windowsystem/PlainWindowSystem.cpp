#include "desktop/linux/windowsystem/PlainWindowSystem.h"

#include <QGuiApplication>
#include <QLoggingCategory>

namespace linux_desktop {
namespace {

Q_LOGGING_CATEGORY(lcWindowSystem, "calmdeck.windowsystem", QtWarningMsg)

}  // namespace

PlainWindowSystem::PlainWindowSystem() {
  qCWarning(lcWindowSystem,
            "on %s desktop icons are not covered and other applications are not hidden; the rest "
            "works",
            qPrintable(QGuiApplication::platformName()));
}

}  // namespace linux_desktop
