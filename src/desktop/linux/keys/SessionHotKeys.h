#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "desktop/linux/keys/KdeHotKeys.h"
#include "platform/port/HotKeys.h"

namespace linux_desktop {

/// Lines for the configuration of the compositor that runs, told by what it sets for its programs;
/// of one that is not known, the command alone.
class OwnKeyBindingLines final : public platform::port::OwnKeyBindings {
 public:
  [[nodiscard]] std::string bindingOf(std::uint32_t keyCode, std::uint32_t modifiers,
                                      std::string_view action) const override;
};

/// Hot keys where this session keeps them: at its service for shortcuts, where it has one that
/// takes them, else with whoever else has some.
class SessionHotKeys final : public platform::port::HotKeys {
 public:
  /// Null: nobody else has any. `others` outlives this.
  explicit SessionHotKeys(platform::port::HotKeys* others);

  /// False: nobody here gives hot keys.
  [[nodiscard]] bool isThere() const { return kde_ || others_ != nullptr; }

  void setClient(platform::port::HotKeysClient* client) override;
  [[nodiscard]] platform::OSStatus registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode, std::uint32_t modifiers,
                                                  const std::string& purpose) override;
  void unregisterHotKey(platform::port::HotKeyNumber number) override;
  [[nodiscard]] bool isReserved(std::uint32_t keyCode, std::uint32_t modifiers) const override;

 private:
  std::optional<KdeHotKeys> kde_;
  platform::port::HotKeys* others_;
};

}  // namespace linux_desktop
