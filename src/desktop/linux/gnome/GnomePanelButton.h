#pragma once

#include <QByteArray>
#include <QObject>

#include "desktop/linux/gnome/GnomeShell.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/windowsystem/PanelButton.h"

namespace linux_desktop {

/// A button of our extension's, which is there while that serves us. It is waited for a while from
/// the start on, for the extension serves us a moment later unless it is off, and when the shell
/// has ended; and for as long as it takes where it went while the extension is turned on: the
/// screen is locked.
class GnomePanelButton final : public PanelButton {
 public:
  /// `shell` outlives this.
  explicit GnomePanelButton(GnomeShell& shell);

  [[nodiscard]] bool isThere() const override { return shell_.isReady(); }
  [[nodiscard]] bool isComing() const override { return isComing_; }
  void show(const QString& service, const QIcon& icon) override;

 private:
  void send() const;
  void expect(bool isComing);

  GnomeShell& shell_;
  QString service_;
  QByteArray picture_;
  bool isComing_;
  OneShot patience_;
};

}  // namespace linux_desktop
