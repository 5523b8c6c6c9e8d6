#pragma once

#include <QImage>
#include <functional>
#include <optional>

#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/wallpaper/Monitor.h"

namespace linux_desktop {

/// What the running desktop has been told to show, and how that looks. Main thread only; bounded by
/// half a second.
class BackdropSource {
 public:
  virtual ~BackdropSource() = default;

  /// For the present workspace. None where nobody knows: no desktop draws one, or it does not
  /// answer.
  [[nodiscard]] virtual std::optional<Backdrop> backdrop(const Monitor& monitor) = 0;

  /// How the desktop draws that backdrop on that monitor, in the monitor's pixels, opaque. Colours
  /// alone where the picture cannot be read. None while a picture takes long to be read; that it
  /// has been is told as a change, and asking again then gives the drawing.
  [[nodiscard]] virtual std::optional<QImage> render(const Backdrop& backdrop,
                                                     const Monitor& monitor) = 0;

  /// `changed` is called when what a monitor has been told to show became another, by us or by
  /// anybody, or can be drawn now; once for changes that follow each other at once. Empty: nobody
  /// watches, and nothing is watched.
  virtual void setChanged(std::function<void()> changed) = 0;
};

}  // namespace linux_desktop
