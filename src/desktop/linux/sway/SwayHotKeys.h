#pragma once

#include <QJsonObject>
#include <cstdint>
#include <functional>
#include <vector>

#include "desktop/linux/keys/Keymap.h"
#include "desktop/linux/sway/SwayConfig.h"
#include "desktop/linux/sway/SwaySocket.h"
#include "platform/port/HotKeys.h"

namespace linux_desktop {

/// Hot keys as bindings of sway's that do nothing but be reported. They end with this process, or
/// with sway's next reload. Keys are bound by their numbers: what sway itself makes of a name is
/// the key of the first layout.
class SwayHotKeys final : public platform::port::HotKeys {
 public:
  /// `sway` outlives this.
  explicit SwayHotKeys(SwaySocket& sway);
  ~SwayHotKeys() override;

  /// Where to ask what the keys of the keyboard give; null, as at first: not known.
  void setKeymap(std::function<const Keymap*()> keymap);
  /// To be called when that is another one.
  void keymapChanged();

  void setClient(platform::port::HotKeysClient* client) override { client_ = client; }
  [[nodiscard]] platform::OSStatus registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode, std::uint32_t modifiers,
                                                  const std::string& purpose) override;
  void unregisterHotKey(platform::port::HotKeyNumber number) override;

 private:
  struct HotKey {
    platform::port::HotKeyNumber number;
    std::uint32_t keyCode;
    std::uint32_t modifiers;
    /// On which keys; none while they are not known, or somebody else has them.
    std::vector<Keycode> keys = {};
  };

  [[nodiscard]] std::vector<Keycode> keysOf(const HotKey& hotKey) const;
  [[nodiscard]] bool isOurs(const HotKey& hotKey) const;
  [[nodiscard]] bool isTheUsers(const HotKey& hotKey);
  [[nodiscard]] std::vector<SwayChord> chordsOf(const HotKey& hotKey) const;
  [[nodiscard]] bool bind(const HotKey& hotKey);
  void unbind(const HotKey& hotKey);
  void reported(const QJsonObject& event);
  void takeLayout(const QJsonObject& input);
  void adapt();
  void bindAnew();

  SwaySocket& sway_;
  platform::port::HotKeysClient* client_ = nullptr;
  std::function<const Keymap*()> keymap_ = [] { return nullptr; };
  KeyboardGroup group_ = 0;
  std::vector<HotKey> hotKeys_;
};

}  // namespace linux_desktop
