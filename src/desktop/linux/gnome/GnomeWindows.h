#pragma once

#include <QObject>
#include <QString>
#include <memory>

#include "desktop/linux/gnome/GnomeShell.h"
#include "desktop/linux/windowsystem/OtherApplications.h"

namespace linux_desktop {

/// Has our extension minimise windows and bring them back. The mark by which another process knows
/// them again is kept by the shell for as long as that runs; while the extension is off, nothing
/// can be hidden or shown, and a line on standard error says so.
class GnomeWindows final : public WindowHider {
 public:
  /// `shell` outlives this.
  explicit GnomeWindows(GnomeShell& shell);

  [[nodiscard]] bool canHide() override { return !shell_.isOff(); }
  [[nodiscard]] bool isHiding() override { return isHiding_; }
  void hide(Done done) override;
  void show(Done done) override;

 private:
  void run(const QString& method, Done done);

  GnomeShell& shell_;
  bool isHiding_ = false;
  std::unique_ptr<BusSignal> hiding_;
  QObject context_;
};

}  // namespace linux_desktop
