#pragma once

#include <QRect>
#include <QString>
#include <QWindow>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace linux_desktop {

/// A panel of the desktop, in Qt's coordinates of the whole desktop.
struct DesktopPanel {
  QRect geometry;
  /// What the panel keeps free of windows; empty for one that hides itself or floats.
  QRect reserved;
  /// The process that shows it; 0 where that is not known.
  std::uint32_t pid = 0;
};

/// The part of a panel that another process draws: some panels run their tray that way.
struct PanelPart {
  QRect part;
  QRect panel;
};

/// A press of a button or a finger somewhere else than on the window of ours that is watched over.
struct OutsidePress {
  /// The window system's, in milliseconds: the clock of QInputEvent::timestamp. Goes round after
  /// 49 days.
  std::uint32_t time = 0;
  bool isOnPanel = false;
};

/// What our own windows need of a window system beside what Qt does for them. This class is what
/// can be done without knowing it; each window system overrides what it does better. Rectangles
/// and points are Qt's, of the whole desktop. Main thread only; outlives the windows.
class OwnWindows {
 public:
  OwnWindows() = default;
  virtual ~OwnWindows() = default;
  OwnWindows(const OwnWindows&) = delete;
  OwnWindows& operator=(const OwnWindows&) = delete;

  /// Keeps a window that is not on the screen yet out of task lists and pagers.
  virtual void keepOutOfTaskLists(QWindow& /*window*/) {}
  /// Says of a window that was just shown that the user asked for it now.
  virtual void markAsAskedFor(QWindow& /*window*/) {}
  /// Whether the desktop has the window, though it may not be on the screen: minimised, or on
  /// another space.
  [[nodiscard]] virtual bool isKept(QWindow& window) { return window.isExposed(); }
  /// Asks for the keyboard on behalf of the user, and for the window to come to where the user is.
  /// For one that the desktop keeps, or that is on the screen. `token` is
  /// what the user's click gave leave with (xdg-activation), or empty. It may be refused.
  virtual void activate(QWindow& window, const QString& token);

  /// Whether a window may be translucent and so have round corners now.
  [[nodiscard]] virtual bool mayBeRound() { return false; }
  /// The panels as they stand now.
  [[nodiscard]] virtual std::vector<DesktopPanel> panels() { return {}; }
  /// What that process draws of another one's panel.
  [[nodiscard]] virtual std::optional<PanelPart> partDrawnBy(std::uint32_t /*pid*/) {
    return std::nullopt;
  }
  /// Where the pointer is; none where a program may not know.
  [[nodiscard]] virtual std::optional<QPoint> pointer() { return std::nullopt; }

  /// Sees presses for as long as it lives.
  class PressWatch {
   public:
    virtual ~PressWatch() = default;
    /// Those that have happened up to now are not reported any more.
    virtual void discardPending() = 0;
  };
  using Pressed = std::function<void(const OutsidePress& press)>;
  /// Reports each press outside `window`, whoever gets it, without a grab. Turning a wheel is no
  /// press. Null: they cannot be seen here. `pressed` is called out of the event loop and must not
  /// end the watch.
  [[nodiscard]] virtual std::unique_ptr<PressWatch> watchPresses(QWindow& /*window*/,
                                                                 const Pressed& /*pressed*/) {
    return nullptr;
  }
};

}  // namespace linux_desktop
