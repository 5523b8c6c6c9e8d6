#pragma once

#include <QJsonObject>
#include <QObject>
#include <QPoint>
#include <QSize>
#include <QString>
#include <optional>
#include <vector>

#include "desktop/linux/bus/BusPeer.h"

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

inline constexpr const char* kSlideShowPlugin = "org.kde.slideshow";

/// The desktops of Plasma's shell, one a screen, reached through its scripting. What was read
/// serves for the rest of that turn of the event loop: a script takes the shell ten milliseconds
/// and more, and one toggle asks about each monitor several times. Main thread only.
class PlasmaDesktops {
 public:
  PlasmaDesktops() = default;
  PlasmaDesktops(const PlasmaDesktops&) = delete;
  PlasmaDesktops& operator=(const PlasmaDesktops&) = delete;

  /// What the shell keeps for the screen whose corner that is: `id`, its number as `screen`,
  /// `plugin`, the `image` that the picture plugin would show, the one that is `shown`, `fill`,
  /// `color`, `look` and `window`; for a slide show of Plasma 6 also its `slide`. None when there
  /// is no such screen or the shell does not answer.
  [[nodiscard]] std::optional<QJsonObject> at(const QPoint& corner, const QDeadlineTimer& deadline);

  /// Gives the desktop `id` that `plugin` and that `image`, and has a slide show go on from its
  /// `slide`, if any; whoever calls tells of the change. False: nothing was set, or the shell does
  /// not answer.
  [[nodiscard]] bool set(const QJsonObject& wanted, const QDeadlineTimer& deadline);

  /// Asks anew, whether anything differs from what it was at the last change that was told.
  [[nodiscard]] bool hasChanged();

 private:
  /// What a script printed; nothing when the shell does not answer.
  using Lines = std::vector<QByteArray>;

  [[nodiscard]] Lines evaluate(const QString& script, const QDeadlineTimer& deadline);
  /// From Plasma 6 on only the bus tells which slide is on; before, it does not know the question.
  void askForSlides(Lines& printed, const QDeadlineTimer& deadline);
  /// False: that is no answer of a reading script that came to its end.
  bool keep(Lines printed);
  bool read(const QDeadlineTimer& deadline);

  BusPeer shell_{QStringLiteral("org.kde.plasmashell")};
  /// One desktop a line.
  std::optional<Lines> lastRead_;
  /// It was something else before, of which nobody has been told.
  bool hasNews_ = false;
  bool isOfThisTurn_ = false;
  QObject context_;
};

}  // namespace linux_desktop
