#include "desktop/linux/ui/QtWindows.h"

#include <QApplication>
#include <utility>

#include "desktop/linux/ui/QtAlert.h"
#include "desktop/linux/ui/QtWindowPeer.h"

namespace linux_desktop {

QtWindows::QtWindows(const platform::port::MainLoop& loop)
    : services_{.clock = [&loop] { return loop.now(); },
                .server = XServer::connect(),
                .alerts = 0,
                .shown = {}} {
  // The program lives in the tray, with and without windows.
  QApplication::setQuitOnLastWindowClosed(false);
}

std::unique_ptr<platform::port::WindowPeer> QtWindows::createWindow(
    platform::NSWindow& window, platform::port::WindowClient& client) {
  return std::make_unique<QtWindowPeer>(window, client, services_);
}

std::unique_ptr<platform::port::Windows::AlertPeer> QtWindows::showAlert(
    const platform::NSAlert& alert, std::function<void(std::size_t button)> answered) {
  return std::make_unique<QtAlert>(alert, std::move(answered), services_);
}

void QtWindows::activateApplication() {
  // An alert took the keyboard when it came and keeps it from the windows behind it.
  if (services_.alerts == 0 && !services_.shown.empty()) services_.shown.back()->makeKey();
}

}  // namespace linux_desktop
