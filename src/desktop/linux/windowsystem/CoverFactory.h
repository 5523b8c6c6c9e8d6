#pragma once

#include <memory>

#include "platform/port/Windows.h"

namespace linux_desktop {

/// Makes the windows that stand above the desktop's icons and below everything else.
class CoverFactory {
 public:
  virtual ~CoverFactory() = default;

  /// Whether what makes them is at work now.
  [[nodiscard]] virtual bool canCover() { return true; }
  /// The peer of a borderless window at the backstop level whose content is one image view. It
  /// stands on every workspace, in no task list, never gets the keyboard and swallows clicks.
  /// Mapped only once its picture is there. `window` and `client` outlive the peer, and this does
  /// too.
  [[nodiscard]] virtual std::unique_ptr<platform::port::WindowPeer> createCover(
      platform::NSWindow& window, platform::port::WindowClient& client) = 0;
};

}  // namespace linux_desktop
