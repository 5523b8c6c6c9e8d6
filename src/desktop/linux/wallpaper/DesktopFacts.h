#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "desktop/linux/wallpaper/Backdrop.h"

namespace linux_desktop {

class WallpaperAdapter;

/// The lowest visible window that shows a desktop over a monitor and is not ours.
struct DesktopWindow {
  /// 0: there is none.
  std::uint32_t id = 0;
  /// What its program calls windows of this kind; the second part of X11's WM_CLASS.
  QString windowClass;
  /// 0 where that is not known.
  qint64 pid = 0;
};

struct Workspaces {
  int count = 1;
  /// The one that is shown, from 0.
  int present = 0;
};

/// What the pictures of desktops depend on of the session. This class is what can be told without
/// knowing the window system; each window system overrides what it knows. Main thread only.
class DesktopFacts {
 public:
  explicit DesktopFacts(std::function<std::vector<Monitor>()> monitors)
      : monitors_(std::move(monitors)) {}
  virtual ~DesktopFacts() = default;
  DesktopFacts(const DesktopFacts&) = delete;
  DesktopFacts& operator=(const DesktopFacts&) = delete;

  /// Those that are connected now; their names are the screens' ids.
  [[nodiscard]] std::vector<Monitor> monitors() const { return monitors_(); }
  /// As of this turn of the event loop.
  [[nodiscard]] virtual DesktopWindow desktopWindow() { return {}; }
  /// None where a program may not know.
  [[nodiscard]] virtual std::optional<Workspaces> workspaces() { return std::nullopt; }
  /// The names of the monitors that show something, as the hardware lists them: the primary one has
  /// no place of its own.
  [[nodiscard]] virtual std::vector<QString> outputsInUse() { return {}; }
  /// For where nobody draws a desktop: what sets the picture that then is seen. Null where none is.
  /// The same one each time, and it forgets nothing in between.
  [[nodiscard]] virtual std::shared_ptr<WallpaperAdapter> bareDesktop() { return bareDesktop_; }
  /// For where the window system and the shell have a say in it.
  void setBareDesktop(std::shared_ptr<WallpaperAdapter> adapter) {
    bareDesktop_ = std::move(adapter);
  }

 private:
  std::function<std::vector<Monitor>()> monitors_;
  std::shared_ptr<WallpaperAdapter> bareDesktop_;
};

}  // namespace linux_desktop
