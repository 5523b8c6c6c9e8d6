#pragma once

#include <QTimer>
#include <memory>

#include "desktop/linux/x11/MonitorPictures.h"
#include "desktop/linux/xserver/XEvents.h"
#include "platform/port/Screens.h"

namespace linux_desktop {

/// The workspaces of a window manager, and the pictures behind them. Wakes the program only when
/// something on the root window changes, which is when the user acts.
class XSpaces final : public platform::port::Spaces {
 public:
  /// Both outlive this.
  XSpaces(XEvents& events, MonitorPictures& pictures);
  ~XSpaces() override;
  XSpaces(const XSpaces&) = delete;
  XSpaces& operator=(const XSpaces&) = delete;

  void setClient(platform::port::SpacesClient* client) override;

 private:
  XEvents& events_;
  MonitorPictures& pictures_;
  platform::port::SpacesClient* client_ = nullptr;
  std::unique_ptr<XEvents::Watch> watch_;
  /// A desktop draws one monitor after the other, and some time after the workspace changed.
  QTimer settling_;
};

}  // namespace linux_desktop
