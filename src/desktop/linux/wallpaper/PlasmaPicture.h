#pragma once

#include <QSize>
#include <QString>

namespace linux_desktop {

/// What decides which picture Plasma takes where it has a choice.
struct PlasmaLook {
  /// The package of the global theme, which names the picture of a screen that has been told none.
  QString package;
  /// Windows are dark, so that a dark picture goes with them.
  bool isDark = false;
};

/// The file that Plasma shows on a screen of `size` pixels when told `image`: a file or a folder,
/// as a path or a URL, or the name of a folder among the system's wallpapers; empty for the
/// theme's. A folder holds one picture in many sizes. Empty when there is no such file.
[[nodiscard]] QString plasmaPicture(const QString& image, const QSize& size,
                                    const PlasmaLook& look);

}  // namespace linux_desktop
