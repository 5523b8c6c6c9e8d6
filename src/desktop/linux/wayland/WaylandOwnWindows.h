#pragma once

#include <QScreen>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wayland/PressCatcher.h"
#include "desktop/linux/wayland/QtWayland.h"
#include "desktop/linux/wayland/WaylandKeyboard.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

/// A window of Qt's on the layer above all others, where the compositor puts it to the pixel, gives
/// it the keyboard at once and lists it nowhere.
class LayerPopover final : public OwnWindows::Popover {
 public:
  struct Client {
    /// Called out of the event loop when the compositor takes the window away.
    std::function<void()> dismissed;
    /// It is in front again, as one that came there last.
    std::function<void()> cameBack;
  };

  /// Null where the compositor does not answer. `window` is not on the screen, and is shown next.
  /// `isExact`: the place is off the panels already; else what they keep free comes to it. `qt` and
  /// `shell`, one of Qt's connection, outlive this.
  [[nodiscard]] static std::unique_ptr<LayerPopover> make(const QtWayland& qt,
                                                          zwlr_layer_shell_v1& shell,
                                                          QWindow& window, const QRect& place,
                                                          bool isExact, Client client);

  void moveTo(const QRect& place) override;
  void giveWay(bool toAnother) override;

 private:
  LayerPopover(QWindow& window, QScreen& screen, WaylandProxy<zwlr_layer_surface_v1> layer,
               Client client);

  QWindow& window_;
  QScreen& screen_;
  WaylandProxy<zwlr_layer_surface_v1> layer_;
  Client client_;
  bool configured_ = false;
  QObject context_;
};

/// What a compositor with layers does for our own windows. It tells nobody where windows are or
/// what is pressed, so both are found out with a catcher in front of everything.
class WaylandOwnWindows final : public OwnWindows {
 public:
  /// All outlive this.
  WaylandOwnWindows(const QtWayland& qt, const WaylandKeyboard& keyboard, const LayerShell& shell,
                    WaylandOutputs& outputs);

  /// Whether the compositor has what this needs, and still serves us.
  [[nodiscard]] bool isPossible() const {
    return popovers_ && shell_.isThere() && !shell_.connection.isLost();
  }

  /// See WaylandWindowSystem.
  void setFirstIsInFront() { firstIsInFront_ = true; }

  /// Tells where panels are; see WaylandWindowSystem.
  void setPanels(std::function<std::vector<DesktopPanel>()> panels) { panels_ = std::move(panels); }

  /// Brings the window of ours with this title to the user. False: it cannot.
  using Bringer = std::function<bool(const QString& title)>;
  void setBringer(Bringer bringer) { bringer_ = std::move(bringer); }

  void activate(QWindow& window) override;
  [[nodiscard]] std::unique_ptr<Popover> makePopover(
      QWindow& window, const QRect& place, const std::function<void()>& dismissed) override;
  [[nodiscard]] std::unique_ptr<KeyDiversion> divertKeys(QWindow& window) override;
  [[nodiscard]] bool mayBeRound() override { return true; }
  [[nodiscard]] std::vector<DesktopPanel> panels() override;
  void findPointer(const PointerFound& found) override;
  [[nodiscard]] std::unique_ptr<PressWatch> watchPresses(QWindow& window,
                                                         const Pressed& pressed) override;

 private:
  [[nodiscard]] std::shared_ptr<PressCatcher> catcher();
  void putCatcherBehind();
  void pointerFound();

  const QtWayland& qt_;
  const WaylandKeyboard& keyboard_;
  const LayerShell& shell_;
  WaylandOutputs& outputs_;
  PointerSeat seat_;
  /// Of Qt's connection.
  WaylandProxy<zwlr_layer_shell_v1> popovers_;
  WaylandProxy<zwp_keyboard_shortcuts_inhibit_manager_v1> inhibition_;
  std::function<std::vector<DesktopPanel>()> panels_;
  Bringer bringer_;
  bool firstIsInFront_ = false;
  /// As they were before the panel came up.
  std::vector<DesktopPanel> bars_;
  std::weak_ptr<PressCatcher> catcher_;
  /// Keeps it while the pointer is looked for, and for the turn of the loop in which somebody may
  /// watch by it.
  std::shared_ptr<PressCatcher> kept_;
  std::vector<PointerFound> finders_;
  OneShot patience_;
};

}  // namespace linux_desktop
