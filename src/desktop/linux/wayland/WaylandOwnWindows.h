#pragma once

#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/wayland/LayerPopover.h"
#include "desktop/linux/wayland/PressCatcher.h"
#include "desktop/linux/wayland/QtWayland.h"
#include "desktop/linux/wayland/WaylandKeyboard.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

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
  [[nodiscard]] std::vector<DesktopPanel> panels() override {
    return panels_ ? panels_() : std::vector<DesktopPanel>();
  }
  void findPointer(const PointerFound& found) override;
  [[nodiscard]] QScreen& likelyScreen() override;
  [[nodiscard]] std::unique_ptr<PressWatch> watchPresses(QWindow& window,
                                                         const Pressed& pressed) override;

 private:
  [[nodiscard]] QScreen* screenWithBar() const;
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
  QPointer<QScreen> likelyScreen_;
  std::weak_ptr<PressCatcher> catcher_;
  /// Keeps it while the pointer is looked for, and for the turn of the loop in which somebody may
  /// watch by it.
  std::shared_ptr<PressCatcher> kept_;
  std::vector<PointerFound> finders_;
  QTimer patience_;
};

}  // namespace linux_desktop
