#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/gsettings/GuardedSettings.h"
#include "platform/port/HotKeys.h"

namespace linux_desktop {

/// Hot keys among those that GNOME's users bind to commands of their own, where they are seen in
/// the settings of the keyboard: the command tells us of the press. They go with this; those that a
/// process before left behind, with the next. GNOME binds no key twice and tells nobody, so what
/// its settings have for something else is refused. Main thread only.
class CommandHotKeys final : public platform::port::HotKeys {
 public:
  /// Null where no GNOME Shell runs, where its settings have no place for such keys, or where there
  /// is no command that can tell us.
  [[nodiscard]] static std::unique_ptr<CommandHotKeys> open();
  ~CommandHotKeys() override;
  CommandHotKeys(const CommandHotKeys&) = delete;
  CommandHotKeys& operator=(const CommandHotKeys&) = delete;

  void setClient(platform::port::HotKeysClient* client) override { client_ = client; }
  [[nodiscard]] platform::OSStatus registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode, std::uint32_t modifiers,
                                                  const std::string& purpose) override;
  void unregisterHotKey(platform::port::HotKeyNumber number) override;

 private:
  struct HotKey {
    platform::port::HotKeyNumber number;
    /// Where its settings are.
    std::string path;
    std::string accelerator;
  };

  CommandHotKeys(std::unique_ptr<GuardedSettings> mediaKeys, QString command);
  [[nodiscard]] BusInterface ear();
  void pressed(platform::port::HotKeyNumber number);
  [[nodiscard]] bool bind(const HotKey& hotKey, const std::string& shown);
  void remove(const std::vector<std::string>& paths);

  std::unique_ptr<GuardedSettings> mediaKeys_;
  /// With %1 for the number.
  QString command_;
  BusObject ear_;
  platform::port::HotKeysClient* client_ = nullptr;
  std::vector<HotKey> hotKeys_;
  QObject later_;
};

}  // namespace linux_desktop
