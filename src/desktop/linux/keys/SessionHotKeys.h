#pragma once

#include <optional>

#include "desktop/linux/keys/KdeHotKeys.h"
#include "desktop/linux/keys/PortalHotKeys.h"
#include "platform/port/HotKeys.h"

namespace linux_desktop {

/// Hot keys where this session keeps them: at its service for shortcuts, where it has one that
/// takes them, else with the window system, and where that has none at the desktop portal.
class SessionHotKeys final : public platform::port::HotKeys {
 public:
  /// Null: the window system has none. `windowSystem` outlives this.
  explicit SessionHotKeys(platform::port::HotKeys* windowSystem);

  /// False: nobody here gives hot keys.
  [[nodiscard]] bool isThere() const { return kde_ || windowSystem_ != nullptr; }

  void setClient(platform::port::HotKeysClient* client) override;
  [[nodiscard]] platform::OSStatus registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode,
                                                  std::uint32_t modifiers) override;
  void unregisterHotKey(platform::port::HotKeyNumber number) override;
  [[nodiscard]] bool isReserved(std::uint32_t keyCode, std::uint32_t modifiers) const override;

 private:
  std::optional<KdeHotKeys> kde_;
  std::optional<PortalHotKeys> portal_;
  platform::port::HotKeys* windowSystem_;
};

}  // namespace linux_desktop
