#pragma once

#include <QRect>
#include <QString>
#include <QWindow>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
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
  /// For one that the desktop keeps, or that is on the screen. It may be refused.
  virtual void activate(QWindow& window) {
    const QString token = takeToken();
    // Where Qt looks for it, and takes it away.
    if (!token.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    window.requestActivate();
  }
  /// What the user's last act gave leave with to take the keyboard (xdg-activation), or empty. It
  /// serves the next window that is activated, once.
  void setToken(const QString& token) { token_ = token; }

  /// A popover that the window system itself keeps in its place: in front of all other windows, and
  /// with the keyboard from the moment on in which it is shown.
  class Popover {
   public:
    virtual ~Popover() = default;
    virtual void moveTo(const QRect& place) = 0;
    /// Whether it leaves the front and the keyboard to another popover of ours.
    virtual void giveWay(bool toAnother) = 0;
  };
  /// Makes a popover at `place` of `window`, which is not on the screen and is shown next. It ends
  /// when the window is hidden, or with what is returned, before that. Null: the window is one like
  /// others, and stands where it is moved. `dismissed` is called out of the event loop when its
  /// screen goes, and must not end the popover.
  [[nodiscard]] virtual std::unique_ptr<Popover> makePopover(
      QWindow& /*window*/, const QRect& /*place*/, const std::function<void()>& /*dismissed*/) {
    return nullptr;
  }
  /// For as long as this lives, keys pressed in `window`, which is on the screen, are its own, also
  /// those that the desktop would act on. Null: that cannot be had here, or needs no asking.
  class KeyDiversion {
   public:
    virtual ~KeyDiversion() = default;
  };
  [[nodiscard]] virtual std::unique_ptr<KeyDiversion> divertKeys(QWindow& /*window*/) {
    return nullptr;
  }

  /// Whether a window may be translucent and so have round corners now.
  [[nodiscard]] virtual bool mayBeRound() { return false; }
  /// The panels as they stand now.
  [[nodiscard]] virtual std::vector<DesktopPanel> panels() { return {}; }
  /// What that process draws of another one's panel.
  [[nodiscard]] virtual std::optional<PanelPart> partDrawnBy(std::uint32_t /*pid*/) {
    return std::nullopt;
  }
  /// Tells where the pointer is, or none where a program may not know: now, or out of the event
  /// loop as soon as it is known, which is when the user lets the button go.
  using PointerFound = std::function<void(std::optional<QPoint> point)>;
  virtual void findPointer(const PointerFound& found) { found(std::nullopt); }

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

 protected:
  [[nodiscard]] QString takeToken() { return std::exchange(token_, {}); }

 private:
  QString token_;
};

}  // namespace linux_desktop
