#pragma once

#include <memory>
#include <vector>

#include "desktop/linux/windowsystem/WindowSystem.h"
#include "desktop/linux/x11/MonitorPictures.h"
#include "desktop/linux/x11/XApplications.h"
#include "desktop/linux/x11/XCovers.h"
#include "desktop/linux/x11/XEvents.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/x11/XServer.h"
#include "desktop/linux/x11/XSpaces.h"
#include "desktop/linux/x11/XWindowList.h"

namespace linux_desktop {

/// The X window system, over a connection of our own.
class X11WindowSystem final : public WindowSystem {
 public:
  /// Null where the interface is not on an X server, or that cannot be reached.
  [[nodiscard]] static std::unique_ptr<X11WindowSystem> open();

  platform::port::Screens& screens() override { return screens_; }
  CoverWindows* covers() override { return &covers_; }
  platform::port::WindowList* windowList() override { return &windowList_; }
  platform::port::Spaces* spaces() override { return &spaces_; }
  platform::port::RunningApplications* runningApplications() override { return &applications_; }

  /// Where to ask what the desktop was told to show behind everything; see MonitorPictures. Null:
  /// nobody knows. Outlives its being set.
  void setBackdrops(BackdropSource* backdrops) { pictures_.setBackdrops(backdrops); }

  /// For what all window systems share but sees more on an X server.
  [[nodiscard]] XEvents& events() { return events_; }
  [[nodiscard]] const std::vector<Monitor>& monitors() const { return screens_.monitors(); }

 private:
  explicit X11WindowSystem(std::unique_ptr<XServer> server);

  std::unique_ptr<XServer> server_;
  XEvents events_{*server_};
  XScreens screens_{events_};
  MonitorPictures pictures_{events_, screens_};
  XWindowList windowList_{screens_, pictures_};
  XSpaces spaces_{events_, pictures_};
  XCovers covers_{events_, screens_};
  XApplications applications_{events_};
};

}  // namespace linux_desktop
