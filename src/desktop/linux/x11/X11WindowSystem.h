#pragma once

#include <memory>

#include "desktop/linux/windowsystem/WindowSystem.h"
#include "desktop/linux/x11/XEvents.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/x11/XServer.h"

namespace linux_desktop {

/// The X window system, over a connection of our own.
class X11WindowSystem final : public WindowSystem {
 public:
  /// Null where the interface is not on an X server, or that cannot be reached.
  [[nodiscard]] static std::unique_ptr<X11WindowSystem> open();

  platform::port::Screens& screens() override { return screens_; }

 private:
  explicit X11WindowSystem(std::unique_ptr<XServer> server);

  std::unique_ptr<XServer> server_;
  XEvents events_{*server_};
  XScreens screens_{events_};
};

}  // namespace linux_desktop
