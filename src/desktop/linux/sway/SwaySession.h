#pragma once

#include <memory>

#include "desktop/linux/sway/SwayHotKeys.h"
#include "desktop/linux/sway/SwaySocket.h"
#include "desktop/linux/sway/SwayWindows.h"
#include "desktop/linux/windowsystem/OtherApplications.h"

namespace linux_desktop {

/// What sway does for us beside what Wayland has for it. Main thread only.
class SwaySession {
 public:
  /// Null where no sway answers.
  [[nodiscard]] static std::unique_ptr<SwaySession> open() {
    auto socket = SwaySocket::open();
    if (!socket) return nullptr;
    return std::unique_ptr<SwaySession>(new SwaySession(std::move(socket)));
  }

  [[nodiscard]] WindowHider* windowHider() { return &windows_; }
  [[nodiscard]] platform::port::HotKeys* hotKeys() { return &hotKeys_; }

 private:
  explicit SwaySession(std::unique_ptr<SwaySocket> socket) : socket_(std::move(socket)) {}

  std::unique_ptr<SwaySocket> socket_;
  SwayWindows windows_{*socket_};
  SwayHotKeys hotKeys_{*socket_};
};

}  // namespace linux_desktop
