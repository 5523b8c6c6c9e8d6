#pragma once

#include "desktop/linux/process/SingleInstance.h"
#include "platform/port/Session.h"

namespace linux_desktop {

/// The user's session as the application sees it: it hears of further starts of the program.
class UserSession final : public platform::port::Session {
 public:
  /// See SingleInstance::claim.
  [[nodiscard]] SingleInstance::Claim claim() { return instance_.claim(); }

  void setClient(platform::port::SessionClient* client) override { client_ = client; }

 private:
  platform::port::SessionClient* client_ = nullptr;
  SingleInstance instance_{[this] {
    if (client_ != nullptr) client_->applicationShouldReopen();
  }};
};

}  // namespace linux_desktop
