#pragma once

#include <QPointF>

#include "platform/appkit/NSView.h"

namespace linux_desktop {

/// Told of the presses on views, with where the pointer was in the window, y down. Each press is
/// followed by one release.
class PressObserver {
 public:
  virtual ~PressObserver() = default;
  virtual void pressed(platform::NSView& view, QPointF inWindow) = 0;
  virtual void released(platform::NSView& view, QPointF inWindow) = 0;
};

}  // namespace linux_desktop
