#pragma once

#include <QRect>
#include <functional>
#include <memory>
#include <string_view>

#include "desktop/linux/x11/XPicture.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// How a cover comes to stand between the icons and the ordinary windows.
struct CoverStand {
  /// The window manager keeps it there, as a desktop window that belongs to the icon window. Else
  /// it is passed over by window managers and stands right above `iconTopLevel`, or at the very
  /// bottom where there is none.
  bool managed = true;
  // None where there are no icons.
  xcb_window_t iconWindow = XCB_NONE;
  xcb_window_t iconTopLevel = XCB_NONE;
  /// It is a desktop window and asks for nothing more.
  bool byTypeAlone = false;

  bool operator==(const CoverStand&) const = default;
};

/// One bare window whose picture is its background: the server repaints it, this process never.
/// Destroyed with the object. It swallows clicks and does nothing with them.
class CoverSurface {
 public:
  using Picture = XPicture;
  using Place = QRect;
  [[nodiscard]] static bool meet(const QRect& one, const QRect& other) {
    return one.intersects(other);
  }

  /// Not mapped yet. `area` is in pixels of the root window, as large as the picture. `mapped` is
  /// called once the window is on the screen, and may destroy it.
  CoverSurface(XEvents& events, const QRect& area, std::shared_ptr<const XPicture> picture,
               const CoverStand& stand, std::function<void()> mapped);
  ~CoverSurface();
  CoverSurface(const CoverSurface&) = delete;
  CoverSurface& operator=(const CoverSurface&) = delete;

  [[nodiscard]] xcb_window_t window() const { return window_; }
  [[nodiscard]] const QRect& place() const { return area_; }
  [[nodiscard]] const std::shared_ptr<const XPicture>& picture() const { return picture_; }
  [[nodiscard]] const CoverStand& stand() const { return stand_; }

  void map();
  /// Of the same size.
  void setPicture(std::shared_ptr<const XPicture> picture);
  /// Asks for its place again, above the icons. Being managed or not stays as it was made.
  void restack(const CoverStand& stand);
  /// The icon windows are others now.
  void follow(const CoverStand& stand);

 private:
  void create();
  void describe();
  void setTransient();
  void placeAmongUnmanaged();
  void insistOnPlace();
  void setText(std::string_view property, std::string_view type, std::string_view value);

  XServer& server_;
  QRect area_;
  std::shared_ptr<const XPicture> picture_;
  CoverStand stand_;
  xcb_window_t window_;
  std::unique_ptr<XEvents::Watch> watch_;
};

}  // namespace linux_desktop
