#pragma once

#include <QByteArrayList>
#include <QJsonObject>
#include <cstdint>
#include <vector>

#include "desktop/linux/sway/SwaySocket.h"
#include "platform/port/HotKeys.h"

namespace linux_desktop {

/// Hot keys as bindings of sway's that do nothing but be reported. They end with this process, or
/// with sway's next reload.
class SwayHotKeys final : public platform::port::HotKeys {
 public:
  /// `sway` outlives this.
  explicit SwayHotKeys(SwaySocket& sway);
  ~SwayHotKeys() override;

  void setClient(platform::port::HotKeysClient* client) override { client_ = client; }
  [[nodiscard]] platform::OSStatus registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode,
                                                  std::uint32_t modifiers) override;
  void unregisterHotKey(platform::port::HotKeyNumber number) override;

 private:
  struct HotKey {
    platform::port::HotKeyNumber number;
    /// As sway names them: one for each name of the key.
    QByteArrayList combinations;
  };

  [[nodiscard]] bool isOurs(const HotKey& hotKey) const;
  [[nodiscard]] bool isTheUsers(const HotKey& hotKey);
  [[nodiscard]] bool bind(const HotKey& hotKey);
  void unbind(const HotKey& hotKey);
  void reported(const QJsonObject& event);
  void bindAnew();

  SwaySocket& sway_;
  platform::port::HotKeysClient* client_ = nullptr;
  std::vector<HotKey> hotKeys_;
};

}  // namespace linux_desktop
