#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desktop/linux/gnome/GnomeShell.h"
#include "platform/port/HotKeys.h"

namespace linux_desktop {

/// Hot keys that the shell takes for us, each time that our extension begins to serve us anew. What
/// somebody else has is told when the shell has said so, as are keys of a desktop that assigns
/// them. Once the user has turned the extension off they are others', and stay that: the shell
/// would find them taken. Main thread only.
class GnomeHotKeys final : public platform::port::HotKeys {
 public:
  /// `shell` outlives this.
  explicit GnomeHotKeys(GnomeShell& shell);
  /// Who has hot keys without the extension: asked when it is turned off, or is so already; null:
  /// nobody. What it gives outlives this.
  void setOthers(std::function<HotKeys*()> others);

  void setClient(platform::port::HotKeysClient* client) override;
  [[nodiscard]] platform::OSStatus registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode, std::uint32_t modifiers,
                                                  const std::string& purpose) override;
  void unregisterHotKey(platform::port::HotKeyNumber number) override;

 private:
  /// What the shell calls it; 0: it has not said yet.
  using Key = std::uint32_t;
  struct HotKey {
    platform::port::HotKeyNumber number;
    std::uint32_t keyCode;
    std::uint32_t modifiers;
    std::string purpose;
    std::string accelerator;
    Key key = 0;
  };

  void grab(HotKey& hotKey);
  void grabbed(platform::port::HotKeyNumber number, Key key);
  void pressed(Key key);
  void handOver();

  GnomeShell& shell_;
  std::function<HotKeys*()> others_;
  /// Who has them now; null: the shell.
  HotKeys* instead_ = nullptr;
  platform::port::HotKeysClient* client_ = nullptr;
  std::vector<HotKey> hotKeys_;
  std::unique_ptr<BusSignal> presses_;
  QObject context_;
};

}  // namespace linux_desktop
