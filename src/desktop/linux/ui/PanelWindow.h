#pragma once

#include <QWidget>
#include <QWindow>
#include <functional>
#include <memory>
#include <utility>

#include "desktop/linux/ui/ViewTree.h"

namespace linux_desktop {

/// Calls `exposed` once `window` is on the screen: now if it is. Never if the window goes before.
void onceExposed(QWindow& window, std::function<void()> exposed);

/// What is around the content of a window.
enum class Chrome {
  Ordinary,          ///< the window manager's frame
  OrdinaryWithMenu,  ///< the same, with a row for the menu above the content
  Titled,            ///< as the first; keys are reported, Escape too
  Popover,           ///< our own thin border, in front of other windows
  RoundPopover,      ///< the same with round corners; needs a compositing manager
};

[[nodiscard]] constexpr bool isPopover(Chrome chrome) {
  return chrome == Chrome::Popover || chrome == Chrome::RoundPopover;
}

/// Told what happens to a window, and of the presses in it.
class PanelObserver : public PressObserver {
 public:
  /// The title bar's button, or Escape; the window is still there.
  virtual void closeRequested() = 0;
  /// The user wants the menu that drops down from `button`.
  virtual void menuRequested(QWidget& button) = 0;
  /// A key was pressed in a titled window that no control of it needs, or Shift-Tab, which goes
  /// back to the control before besides. Not for a repeat.
  virtual void keyPressed(const QKeyEvent& event) = 0;
  virtual void activeChanged(bool active) = 0;
  /// A button or a finger was pressed on it, at the window system's time in milliseconds.
  virtual void pressedInside(quint64 time) = 0;
  /// The content asked for another size and got it.
  virtual void resized() = 0;
  /// It is elsewhere now, by our own wish or by somebody else's.
  virtual void moved() = 0;
};

/// A window of ours as large as its content. Does nothing on its own account: it is closed, placed
/// and activated by whoever observes it.
class PanelWindow final : public QWidget {
 public:
  /// `observer` outlives the window.
  PanelWindow(Chrome chrome, const QString& title, Clock clock, PanelObserver& observer);

  [[nodiscard]] Chrome chrome() const { return chrome_; }
  /// What the window holds from now on; null: nothing.
  void setContent(const std::shared_ptr<platform::NSView>& content);
  /// The widgets of the content; null while there is none.
  [[nodiscard]] ViewTree* views() { return views_.get(); }

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void addMenuRow(QBoxLayout& layout);
  /// Whether a key event of a titled window ends here.
  [[nodiscard]] bool takesKey(QKeyEvent& event);
  [[nodiscard]] bool isForControls(const QKeyEvent& event) const;

  Chrome chrome_;
  Clock clock_;
  PanelObserver& observer_;
  /// Where the content goes.
  QBoxLayout* inner_;
  std::unique_ptr<ViewTree> views_;
  /// Of the key that was let go last: where it is on the keyboard, and when that was.
  std::pair<quint32, quint64> lastRelease_;
};

}  // namespace linux_desktop
