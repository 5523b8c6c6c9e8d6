#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/files/Processes.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wallpaper/Backdrop.h"

namespace linux_desktop {

/// What a swaybg was told to show on an output.
struct SwaybgTold {
  /// Absolute; empty where there is but a colour.
  QString image;
  /// As it was said; empty where nothing was.
  QByteArray mode;
  QByteArray colour;

  [[nodiscard]] Backdrop backdrop() const;
  bool operator==(const SwaybgTold&) const = default;
};

/// A swaybg that shows something on an output.
struct RunningSwaybg {
  /// Started by the compositor itself, from its configuration.
  bool isCompositors = false;
  SwaybgTold told;
  /// By which of its names the output was called; "*": all that are not named.
  QString output;
  ProcessTime started = 0;
};

/// The programs called swaybg in this session, which show the pictures of compositors that draw
/// none themselves. Nothing but a command line tells what one shows, from its start to its end.
/// Main thread only.
class SwaybgTable {
 public:
  SwaybgTable();

  /// The one whose picture is in front there, which is the last that was started. None where there
  /// is none. `names` are those of one output; the one that counts most comes first.
  [[nodiscard]] static std::optional<RunningSwaybg> on(const QStringList& names);

  /// `changed` is called when one of those that ran has ended, with which the user replaces the
  /// picture. Empty: nothing is watched.
  void setChanged(std::function<void()> changed);

 private:
  void watch();

  std::function<void()> changed_;
  std::unique_ptr<ProcessEnd> end_;
  /// The next one is being started then.
  OneShot settling_;
};

}  // namespace linux_desktop
