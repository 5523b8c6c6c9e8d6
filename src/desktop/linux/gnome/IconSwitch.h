#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <memory>

#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/windowsystem/CoverFactory.h"

namespace linux_desktop {

/// Covers where GNOME Shell lets nobody put anything over the desktop's icons: for as long as one
/// is shown, the extension that draws them is switched off. What is behind them shows anyhow.
///
/// What we switched off stands twice in the shell's list of those that are. Nobody else does that,
/// and the shell takes out both when the user switches the extension on himself: so a later process
/// knows what an earlier one left off, and switches on nothing else. Main thread only.
class IconSwitch final : public CoverFactory {
 public:
  /// Null where no GNOME Shell runs or it keeps no list. Switches on what a process before left
  /// off.
  [[nodiscard]] static std::unique_ptr<IconSwitch> open();
  ~IconSwitch() override;
  IconSwitch(const IconSwitch&) = delete;
  IconSwitch& operator=(const IconSwitch&) = delete;

  [[nodiscard]] std::unique_ptr<platform::port::WindowPeer> createCover(
      platform::NSWindow& window, platform::port::WindowClient& client) override;

 private:
  class Cover;

  explicit IconSwitch(std::unique_ptr<GuardedSettings> shell);
  void changeShown(int by);
  void follow();
  void switchOff(const QString& extension, const QDBusMessage& facts);
  /// Whether there was something to switch on.
  bool switchOn();

  std::unique_ptr<GuardedSettings> shell_;
  int shown_ = 0;
  /// One look for all covers that come and go in a turn.
  OneShot following_{std::chrono::milliseconds::zero(), [this] { follow(); }};
  QObject context_;
};

}  // namespace linux_desktop
