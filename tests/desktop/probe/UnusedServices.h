#pragma once

#include "platform/Desktop.h"
#include "platform/foundation/ProgrammingError.h"

namespace probe {

[[noreturn]] inline void absent() {
  platform::programmingError("a service that the test does not have");
}

/// What every desktop has and a program of windows alone does not use.
class Unused final : public platform::port::Session,
                     public platform::port::StandardOutput,
                     public platform::port::DefaultsStore,
                     public platform::port::StatusBar {
 public:
  void setClient(platform::port::SessionClient*) override {}
  void print(std::string_view) override { absent(); }
  [[nodiscard]] std::optional<platform::Value> object(std::string_view) const override { absent(); }
  void set(std::string_view, platform::Value) override { absent(); }
  void remove(std::string_view) override { absent(); }
  std::unique_ptr<platform::port::StatusItemPeer> createStatusItem(
      platform::port::StatusItemClient&) override {
    absent();
  }
  [[nodiscard]] bool itemsHaveButtons() const override { absent(); }
};

inline platform::Desktop desktopOf(platform::port::MainLoop& loop, platform::port::Windows& windows,
                                   platform::port::Screens& screens, Unused& unused) {
  return {.mainLoop = loop,
          .standardOutput = unused,
          .defaults = unused,
          .session = unused,
          .windows = windows,
          .statusBar = unused,
          .screens = screens,
          .systemVersion = {},
          .bundlePath = {}};
}

}  // namespace probe
