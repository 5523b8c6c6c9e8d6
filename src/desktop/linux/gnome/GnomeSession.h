#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "desktop/linux/gnome/GnomeCovers.h"
#include "desktop/linux/gnome/GnomeHotKeys.h"
#include "desktop/linux/gnome/GnomeOwnWindows.h"
#include "desktop/linux/gnome/GnomePanelButton.h"
#include "desktop/linux/gnome/GnomeShell.h"
#include "desktop/linux/gnome/GnomeWindows.h"

namespace linux_desktop {

/// What GNOME Shell does for us through our extension. Main thread only.
class GnomeSession {
 public:
  /// Null where no shell answers that has the extension, be it turned off.
  [[nodiscard]] static std::unique_ptr<GnomeSession> open() {
    auto shell = GnomeShell::open();
    if (!shell) return nullptr;
    return std::unique_ptr<GnomeSession>(new GnomeSession(std::move(shell)));
  }

  /// `changed` is called when the extension is turned on or off, while `listener` lives.
  void follow(QObject& listener, const std::function<void()>& changed) {
    QObject::connect(shell_.get(), &GnomeShell::ready, &listener, changed);
    QObject::connect(shell_.get(), &GnomeShell::turnedOff, &listener, changed);
  }
  /// Whether the extension is off, until somebody turns it on.
  [[nodiscard]] bool isOff() const { return shell_->isOff(); }
  [[nodiscard]] WindowHider* windowHider() { return &windows_; }
  [[nodiscard]] GnomeCovers* covers() { return &covers_; }
  [[nodiscard]] OwnWindows* ownWindows() { return &ownWindows_; }
  [[nodiscard]] GnomeHotKeys* hotKeys() { return &hotKeys_; }
  [[nodiscard]] PanelButton* panelButton() { return &panelButton_; }

 private:
  explicit GnomeSession(std::unique_ptr<GnomeShell> shell) : shell_(std::move(shell)) {}

  std::unique_ptr<GnomeShell> shell_;
  GnomeWindows windows_{*shell_};
  GnomeCovers covers_{*shell_};
  GnomeOwnWindows ownWindows_{*shell_};
  GnomeHotKeys hotKeys_{*shell_};
  GnomePanelButton panelButton_{*shell_};
};

}  // namespace linux_desktop
