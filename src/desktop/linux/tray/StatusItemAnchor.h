#pragma once

#include <QPoint>
#include <QRect>
#include <functional>
#include <optional>

#include "platform/appkit/NSEvent.h"

class QWidget;

namespace linux_desktop {

/// Where a status item is, in Qt's own coordinates of the whole desktop.
struct Anchor {
  /// On the item: where the pointer was at the last click on it, or the middle of its icon.
  QPoint point;
  /// The panel that holds the item, where it is known.
  std::optional<QRect> panelGeometry;
};

/// What windows need of a status item. The tray's port::StatusItemPeer implements it too. Main
/// thread only.
class StatusItemAnchor {
 public:
  virtual ~StatusItemAnchor() = default;

  /// Whether a host shows the item now, so that the user can find it again.
  [[nodiscard]] virtual bool isShown() const = 0;
  /// Whether none does yet, but one is going to in a moment, or it turns out that none is.
  [[nodiscard]] virtual bool isComing() const { return false; }
  /// Means something only while the item is shown.
  [[nodiscard]] virtual Anchor anchor() const = 0;

  /// Where the item is not shown, a window stands in for it: the user asked there for the item's
  /// menu. The peer reports a RightMouseUp, and the menu that is opened next drops down from
  /// `button` and is its child.
  virtual void menuRequested(QWidget& button) = 0;

  /// `activated` is called with each click on the item that its client is told of next, be it for
  /// the menu. An empty function: nobody is called.
  virtual void setActivationObserver(std::function<void(platform::NSEventType)> activated) = 0;
};

}  // namespace linux_desktop
