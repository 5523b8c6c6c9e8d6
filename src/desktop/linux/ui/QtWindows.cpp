#include "desktop/linux/ui/QtWindows.h"

#include <QApplication>

#include "desktop/linux/ui/QtDialogs.h"
#include "desktop/linux/ui/WidgetAccessibility.h"
#include "platform/appkit/NSWindow.h"

namespace linux_desktop {
namespace {

/// Stands in for a cover where there can be none.
class NeverShown final : public platform::port::WindowPeer {
 public:
  void show(const platform::port::Placement&) override {}
  void hide() override {}
  void makeKey() override {}
  void update(const std::vector<platform::port::ChangedView>&, bool) override {}
};

}  // namespace

QtWindows::QtWindows(const platform::port::MainLoop& loop, OwnWindows& ownWindows,
                     CoverFactory* covers, KeyTranslator* keys)
    : services_{.clock = [&loop] { return loop.now(); },
                .ownWindows = ownWindows,
                .keys = keys,
                .alerts = 0,
                .shown = {}},
      covers_(covers) {
  QAccessible::installFactory(&accessibleOf);
  // The program lives in the tray, with and without windows.
  QApplication::setQuitOnLastWindowClosed(false);
}

QtWindows::~QtWindows() {
  // An alert that was answered last waits for a turn of the loop that may not come any more.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QAccessible::removeFactory(&accessibleOf);
}

std::unique_ptr<platform::port::WindowPeer> QtWindows::createWindow(
    platform::NSWindow& window, platform::port::WindowClient& client) {
  if (window.level() < CGWindowLevelForKey(platform::CGWindowLevelKey::Normal)) {
    if (covers_ == nullptr) return std::make_unique<NeverShown>();
    return covers_->createCover(window, client);
  }
  return std::make_unique<QtWindowPeer>(window, client, services_);
}

std::unique_ptr<platform::port::Windows::ModalPeer> QtWindows::showAlert(
    const platform::NSAlert& alert, std::function<void(std::size_t button)> answered) {
  return makeAlert(alert, answered, nullptr, services_);
}

std::unique_ptr<platform::port::Windows::ModalPeer> QtWindows::showSheet(
    const platform::NSAlert& alert, platform::port::WindowPeer& window,
    std::function<void(std::size_t button)> answered) {
  return makeAlert(alert, answered, dynamic_cast<QtWindowPeer*>(&window), services_);
}

std::unique_ptr<platform::port::Windows::ModalPeer> QtWindows::showOpenPanel(
    const platform::NSOpenPanel& panel,
    std::function<void(std::optional<std::string> path)> answered) {
  return makeOpenPanel(panel, answered, services_);
}

void QtWindows::setDesktopKeysEnabled(bool enabled) {
  for (QtWindowPeer* peer : services_.shown) peer->divertKeys(!enabled);
}

void QtWindows::statusItemsChanged() {
  const auto shown = services_.shown;
  for (QtWindowPeer* peer : shown) peer->statusItemChanged();
}

void QtWindows::activateApplication() {
  // An alert took the keyboard when it came and keeps it from the windows behind it.
  if (services_.alerts == 0 && !services_.shown.empty()) services_.shown.back()->makeKey();
}

}  // namespace linux_desktop
