#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/tray/StatusItemAnchor.h"
#include "desktop/linux/ui/OutsideActs.h"
#include "desktop/linux/ui/PanelWindow.h"
#include "desktop/linux/windowsystem/KeyTranslator.h"
#include "desktop/linux/windowsystem/OwnWindows.h"
#include "platform/port/Windows.h"

namespace platform {
class NSWindow;
}

namespace linux_desktop {

class QtWindowPeer;

/// What the windows of one QtWindows share.
struct WindowServices {
  Clock clock;
  OwnWindows& ownWindows;
  /// Null where nobody can say what a key is to the platform: then none is reported.
  KeyTranslator* keys = nullptr;
  /// How many dialogs that all windows wait for are on the screen.
  int alerts = 0;
  /// The peers that are on the screen, the one shown last at the end.
  std::vector<QtWindowPeer*> shown;
};

/// A window of the model on the screen: a popover at the status item, or an ordinary window where
/// no item is shown or the model wants one with a title.
class QtWindowPeer final : public platform::port::WindowPeer, private PanelObserver {
 public:
  /// All outlive the peer.
  QtWindowPeer(platform::NSWindow& window, platform::port::WindowClient& client,
               WindowServices& services);
  ~QtWindowPeer() override;

  void show(const platform::port::Placement& placement) override;
  void hide() override;
  void makeKey() override;
  void update(const std::vector<platform::port::ChangedView>& changes, bool frameChanged) override;

  [[nodiscard]] bool isTitled() const;
  /// The native window, for alerts that stand in front of it; null before the first time.
  [[nodiscard]] QWindow* handle() const;
  /// Whether a titled window takes the keys too that the desktop would act on, until it is hidden.
  void divertKeys(bool divert);
  /// Null where the desktop does not keep the window in front of all others.
  [[nodiscard]] OwnWindows::Popover* popover() const { return popover_.get(); }
  /// The item at which the window is shown has come into a tray, or is not going to.
  void statusItemChanged();
  /// An alert was answered: presses up to now were for it.
  void alertDidEnd();

 private:
  void pressed(platform::NSView& view, QPointF inWindow) override;
  void released(platform::NSView& view, QPointF inWindow) override;
  void closeRequested() override;
  void menuRequested(QWidget& button) override;
  void keyPressed(const QKeyEvent& event) override;
  void activeChanged(bool active) override;
  void pressedInside(quint64 time) override;
  void resized() override;
  void moved() override;

  [[nodiscard]] Chrome chromeFor(const StatusItemAnchor* anchor) const;
  void ensureWindow(Chrome chrome);
  /// Brings the window up at the anchor.
  void present();
  /// Among those that are shown, in front of the others.
  void joinShown();
  /// Where a popover belongs now.
  [[nodiscard]] QRect place() const;
  void moveToPlace();
  /// Asks once more for the place of a popover that has just come up elsewhere.
  void insistOnPlace();
  /// Another window of ours is shown that wants the keyboard.
  void giveWay();
  void preparePopover();
  void watchOutside();
  void pressedOutside(const OutsidePress& press);
  [[nodiscard]] bool isActOnOurs() const;
  void report(std::function<void()> what);
  [[nodiscard]] platform::NSEvent eventAt(platform::NSEventType type, QPointF inWindow) const;

  platform::NSWindow& model_;
  platform::port::WindowClient& client_;
  WindowServices& services_;
  /// Where the window is shown at; null while it is hidden.
  StatusItemAnchor* anchor_ = nullptr;
  /// Whether it comes up only when it is known where the anchor is.
  bool waitsForItem_ = false;
  std::unique_ptr<PanelWindow> window_;
  std::shared_ptr<OutsideActs> acts_;
  /// Null where the window is one like others to the desktop.
  std::unique_ptr<OwnWindows::Popover> popover_;
  std::unique_ptr<OwnWindows::PressWatch> presses_;
  std::unique_ptr<OwnWindows::KeyDiversion> diversion_;
  std::optional<std::uint32_t> lastPressInside_;
  platform::MonotonicTime shownSince_;
  /// Those in front of which it came.
  int alertsBefore_ = 0;
  /// None: it does not insist on a place any more.
  std::optional<platform::MonotonicTime> insistsUntil_;
  /// A call of the model is on the stack: reports wait until there is none.
  bool isCalled_ = false;
  /// Reports that wait are dropped with it.
  QObject context_;
};

}  // namespace linux_desktop
