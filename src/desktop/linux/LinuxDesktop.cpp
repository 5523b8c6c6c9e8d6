#include "desktop/linux/LinuxDesktop.h"

#include <QApplication>
#include <QDBusConnection>
#include <QPixmapCache>
#include <QThreadPool>

#include "desktop/linux/SessionAvailability.h"
#include "desktop/linux/SessionServices.h"
#include "desktop/linux/audio/PulseSound.h"
#include "desktop/linux/automation/LinuxAutomation.h"
#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/bus/BusProbe.h"
#include "desktop/linux/defaults/SettingsFile.h"
#include "desktop/linux/keys/SessionHotKeys.h"
#include "desktop/linux/language/Language.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/login/AutostartItems.h"
#include "desktop/linux/loop/QtMainLoop.h"
#include "desktop/linux/notifications/DaemonDoNotDisturb.h"
#include "desktop/linux/notifications/DaemonNotifier.h"
#include "desktop/linux/notifications/NotificationDaemon.h"
#include "desktop/linux/process/StandardOutputStream.h"
#include "desktop/linux/process/TerminationSignals.h"
#include "desktop/linux/process/UserSession.h"
#include "desktop/linux/tray/TrayStatusBar.h"
#include "desktop/linux/ui/QtWindows.h"
#include "desktop/linux/updates/PackageKitUpdates.h"
#include "desktop/linux/wallpaper/WallpaperPictures.h"
#include "desktop/linux/x11/X11WindowSystem.h"

namespace linux_desktop {
namespace {

/// Qt ends the process by an abort where it finds no display, so that is looked at first.
bool isDisplayReachable() {
  return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
         qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || X11WindowSystem::isReachable();
}

}  // namespace

/// What there is one of in the process, whatever the program goes on to do.
struct LinuxDesktop::Process {
  Process(int& argc, char** argv) : application(argc, argv) {
    QApplication::setApplicationName(QStringLiteral("calmdeck"));
    QApplication::setApplicationDisplayName(QStringLiteral("Calmdeck"));
    QApplication::setApplicationVersion(QStringLiteral(CALMDECK_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("org.calmdeck.Calmdeck"));
    QApplication::setQuitOnLastWindowClosed(false);
    // Threads that Qt has drawn a picture with would wake after half a minute, only to end.
    QThreadPool::globalInstance()->setExpiryTimeout(-1);
    // So would the cache of painted pictures; ours are small and painted seldom.
    QPixmapCache::setCacheLimit(0);
  }

  QApplication application;
  Language language;
  UserSession session;
};

struct LinuxDesktop::Services {
  explicit Services(Process& process);

  QtMainLoop loop;
  StandardOutputStream output;
  SettingsFile settings;
  SessionServices session;
  TrayStatusBar tray{session.ownWindows, session.legacyTray, session.panelButton};
  QtWindows windows{loop, session.ownWindows, session.covers, session.keyTranslator};
  PulseSound sound;
  NotificationDaemon notificationDaemon{QDBusConnection::sessionBus()};
  DaemonDoNotDisturb doNotDisturb{notificationDaemon};
  DaemonNotifier notifier{notificationDaemon};
  SessionAvailability availability{session, doNotDisturb, sound};
  LinuxAutomation automation{doNotDisturb, sound.volume(), notifier};
  OwnKeyBindingLines ownKeyBindings;
  AutostartItems loginItems;
  DaemonNotifier updateNotifier{notificationDaemon};
  PackageKitUpdates updates{windows, updateNotifier};
  TerminationSignals signals_{[this] { loop.terminate(); }};
  platform::Desktop desktop;
};

LinuxDesktop::Services::Services(Process& process)
    : desktop{.mainLoop = loop,
              .standardOutput = output,
              .defaults = settings,
              .session = process.session,
              .windows = windows,
              .statusBar = tray,
              .screens = session.screens,
              // Notifications are silenced by a script from this version on, and ours ends at the
              // daemon.
              .systemVersion = {12, 0, 0},
              .bundlePath = ownProgramPath(),
              .audioObjects = &sound.objects(),
              .automation = &automation,
              .hotKeys = session.hotKeys,
              .ownKeyBindings = session.hotKeys == nullptr ? &ownKeyBindings : nullptr,
              .loginItems = &loginItems,
              .updates = &updates,
              .spaces = session.spaces,
              .runningApplications = session.runningApplications,
              .desktopPictures = &session.desktopPictures,
              .windowList = session.windowList,
              .availability = &availability,
              .texts = &process.language} {
  QObject::connect(&tray, &TrayStatusBar::trayChanged, &tray,
                   [this] { windows.statusItemsChanged(); });
}

std::variant<std::unique_ptr<LinuxDesktop>, int> LinuxDesktop::open(int& argc, char** argv) {
  qCInfo(lcProcess, "Calmdeck " CALMDECK_VERSION " with Qt %s", qVersion());
  if (!isDisplayReachable()) {
    qCWarning(lcProcess, "no display can be reached (DISPLAY is \"%s\")",
              qgetenv("DISPLAY").data());
    return 1;
  }
  leaveOutHungSessionBus();
  auto process = std::make_unique<Process>(argc, argv);
  switch (process->session.claim()) {
    case SingleInstance::Claim::HandedOver:
      return 0;
    case SingleInstance::Claim::Unanswered:
      return 1;
    case SingleInstance::Claim::First:
      break;
  }
  return std::unique_ptr<LinuxDesktop>(new LinuxDesktop(std::move(process)));
}

LinuxDesktop::LinuxDesktop(std::unique_ptr<Process> process)
    : process_(std::move(process)), services_(std::make_unique<Services>(*process_)) {
  // In this order: with the name come the calls for which the bus has started us.
  process_->session.joinBus(QDBusConnection::sessionBus());
  requestBusName(QDBusConnection::sessionBus());
}

LinuxDesktop::~LinuxDesktop() = default;

const platform::Desktop& LinuxDesktop::desktop() const {
  return services_->desktop;
}

}  // namespace linux_desktop
