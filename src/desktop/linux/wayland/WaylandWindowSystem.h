#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "desktop/linux/wallpaper/DesktopFacts.h"
#include "desktop/linux/wayland/ForeignToplevels.h"
#include "desktop/linux/wayland/LayerCovers.h"
#include "desktop/linux/wayland/LayerWallpaper.h"
#include "desktop/linux/wayland/ShmPicture.h"
#include "desktop/linux/wayland/WaylandConnection.h"
#include "desktop/linux/wayland/WaylandKeyboard.h"
#include "desktop/linux/wayland/WaylandOutputs.h"
#include "desktop/linux/wayland/WaylandOwnWindows.h"
#include "desktop/linux/windowsystem/DesktopView.h"

namespace linux_desktop {

/// A Wayland compositor, over a connection of our own: what it has to offer. A null pointer: this
/// compositor cannot do it.
class WaylandWindowSystem {
 public:
  /// Null where the interface is not on Wayland, or the compositor cannot be reached.
  [[nodiscard]] static std::unique_ptr<WaylandWindowSystem> open() {
    auto connection = WaylandConnection::open();
    if (!connection) return nullptr;
    return std::unique_ptr<WaylandWindowSystem>(new WaylandWindowSystem(std::move(connection)));
  }

  /// See WaylandConnection.
  [[nodiscard]] qint64 compositor() const { return connection_->compositor(); }
  [[nodiscard]] platform::port::Screens* screens() { return &screens_; }
  [[nodiscard]] CoverFactory* covers() { return covers_.areThere() ? &covers_ : nullptr; }
  [[nodiscard]] platform::port::WindowList* windowList() { return &windowList_; }
  [[nodiscard]] platform::port::Spaces* spaces() { return &spaces_; }

  [[nodiscard]] OwnWindows* ownWindows() {
    return ownWindows_ && ownWindows_->isPossible() ? &*ownWindows_ : nullptr;
  }

  [[nodiscard]] WindowHider* windowHider() { return toplevels_.get(); }
  [[nodiscard]] KeyTranslator* keyTranslator() {
    return keyboard_ && keyboard_->seat() != nullptr ? &*keyboard_ : nullptr;
  }
  /// What the keys of the keyboard in use give, and who is told when that changes. Null: unknown.
  [[nodiscard]] const Keymap* keymap() const { return keyboard_ ? keyboard_->keymap() : nullptr; }
  void setKeymapChanged(std::function<void()> changed) {
    if (keyboard_) keyboard_->setChanged(std::move(changed));
  }
  /// Where to ask where panels are, which compositors do not tell. An empty function, as at first:
  /// nowhere.
  void setPanels(std::function<std::vector<DesktopPanel>()> panels) {
    if (ownWindows_) ownWindows_->setPanels(std::move(panels));
  }

  /// Who brings windows of ours to the user, where that is not to be the compositor's usual way.
  void setBringer(WaylandOwnWindows::Bringer bringer) {
    if (ownWindows_) ownWindows_->setBringer(std::move(bringer));
  }

  [[nodiscard]] DesktopFacts* desktopFacts() { return &facts_; }
  /// What these facts have for where nobody draws a desktop.
  [[nodiscard]] LayerWallpaper* wallpaper() {
    return shell_.isThere() ? wallpaper_.get() : nullptr;
  }
  /// For a compositor that puts a surface behind those of its layer that were there before.
  void setFirstIsInFront() {
    wallpaper_->standAboveOthers();
    if (ownWindows_) ownWindows_->setFirstIsInFront();
  }
  /// Where to ask what the desktop was told to show behind everything. Null, as at first: nobody.
  /// Outlives its being set.
  void setBackdrops(BackdropSource* backdrops) { pictures_.setBackdrops(backdrops); }

 private:
  explicit WaylandWindowSystem(std::unique_ptr<WaylandConnection> connection)
      : connection_(std::move(connection)) {
    if (shell_.isThere()) facts_.setBareDesktop(wallpaper_);
    if (!qt_) return;
    keyboard_.emplace(*qt_);
    ownWindows_.emplace(*qt_, *keyboard_, shell_, outputs_);
    if (!toplevels_) return;
    setBringer([this](const QString& title) { return toplevels_->bringForward(title); });
  }

  std::unique_ptr<WaylandConnection> connection_;
  LayerShell shell_{*connection_};
  /// Null where Qt does not tell of its own connection.
  std::unique_ptr<QtWayland> qt_ = QtWayland::open();
  WaylandOutputs outputs_{*connection_};
  std::optional<WaylandKeyboard> keyboard_;
  std::optional<WaylandOwnWindows> ownWindows_;
  WaylandScreens screens_{outputs_};
  ShmPictures pictures_{*connection_, screens_};
  DesktopWindowList windowList_{screens_, pictures_};
  DesktopSpaces spaces_{pictures_};
  LayerCovers covers_{shell_, outputs_, screens_};
  /// Null where the compositor lets nobody minimise windows.
  std::unique_ptr<ForeignToplevels> toplevels_ = ForeignToplevels::open(*connection_);
  std::shared_ptr<LayerWallpaper> wallpaper_ =
      std::make_shared<LayerWallpaper>(shell_, outputs_, screens_);
  DesktopFacts facts_{[this] { return screens_.monitors(); }};
};

}  // namespace linux_desktop
