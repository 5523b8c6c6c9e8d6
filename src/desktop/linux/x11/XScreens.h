#pragma once

#include <memory>
#include <vector>

#include "desktop/linux/windowsystem/MonitorScreens.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// The monitors of an X server, as RandR lists them. Points are device pixels here, so the scale is
/// always 1. The primary monitor comes first; the rest keep the server's order.
class XScreens final : public MonitorScreens {
 public:
  /// `events` outlives this.
  explicit XScreens(XEvents& events);

 private:
  void watchRandr(XEvents& events);

  std::vector<std::unique_ptr<XEvents::Watch>> watches_;
};

}  // namespace linux_desktop
