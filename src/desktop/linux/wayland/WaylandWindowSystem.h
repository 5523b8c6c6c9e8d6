#pragma once

#include <memory>

#include "desktop/linux/wallpaper/DesktopFacts.h"
#include "desktop/linux/wayland/WaylandConnection.h"
#include "desktop/linux/wayland/WaylandOutputs.h"

namespace linux_desktop {

/// A Wayland compositor, over a connection of our own: what it has to offer. A null pointer: this
/// compositor cannot do it.
class WaylandWindowSystem {
 public:
  /// Null where the interface is not on Wayland, or the compositor cannot be reached.
  [[nodiscard]] static std::unique_ptr<WaylandWindowSystem> open();

  [[nodiscard]] platform::port::Screens* screens() { return &screens_; }

  [[nodiscard]] DesktopFacts* desktopFacts() { return &facts_; }

 private:
  explicit WaylandWindowSystem(std::unique_ptr<WaylandConnection> connection);

  std::unique_ptr<WaylandConnection> connection_;
  WaylandOutputs outputs_{*connection_};
  WaylandScreens screens_{outputs_};
  DesktopFacts facts_{[this] { return screens_.monitors(); }};
};

}  // namespace linux_desktop
