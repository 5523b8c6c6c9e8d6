#pragma once

#include <QRect>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/xserver/XDrawing.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// The pixmap that a desktop has left on the root window and named for others, if it is alive and
/// as large as the root window. What it holds need not be what the root window shows: a program
/// that sets a colour leaves the name as it was.
[[nodiscard]] std::optional<ForeignPixmap> namedRootPixmap(XServer& server);
/// Whether anything is named, be it alive or not.
[[nodiscard]] bool isRootPictureNamed(XServer& server);
/// `changed` is called when a picture is named, maybe the same again, for other pixels.
[[nodiscard]] std::unique_ptr<XEvents::Watch> watchRootPicture(XEvents& events,
                                                               std::function<void()> changed);

/// Copies the root window's background in `area` to the origin of a drawable of its depth: what is
/// really there, also under windows and whatever is named. False where the server keeps
/// nothing of what windows hide.
[[nodiscard]] bool copyRootBackground(XServer& server, const QRect& area, xcb_drawable_t into);

/// A pixmap with what the root window shows now, which the server holds after our end. None where
/// it refuses.
[[nodiscard]] std::optional<xcb_pixmap_t> newRootPixmap(XServer& server);
/// Lets go of one of those, which nobody shows.
void dropRootPixmap(XServer& server, xcb_pixmap_t pixmap);

/// Makes a pixmap of `newRootPixmap` the root window's background and names it, the same one again
/// after it was drawn into too. The one that was named before is freed as its makers expect.
void showRootPixmap(XServer& server, xcb_pixmap_t pixmap);
/// Gives the root window one colour, and nothing is named any more.
void showRootColour(XServer& server, std::uint32_t pixel);

/// The pixel that a pixmap of the root window's size has everywhere, where it has only one.
[[nodiscard]] std::optional<std::uint32_t> onlyPixel(XServer& server, xcb_pixmap_t pixmap);

}  // namespace linux_desktop
