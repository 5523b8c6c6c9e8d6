#pragma once

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include "desktop/linux/gnome/GnomeShell.h"
#include "desktop/linux/windowsystem/PanelButton.h"

namespace linux_desktop {

/// A button of our extension's, which is there while that serves us. From the start on, and when it
/// goes, it is waited for a while: the extension serves us a moment after the start.
class GnomePanelButton final : public PanelButton {
 public:
  /// `shell` outlives this.
  explicit GnomePanelButton(GnomeShell& shell);

  [[nodiscard]] bool isThere() const override { return shell_.isReady(); }
  [[nodiscard]] bool isComing() const override { return patience_.isActive(); }
  void show(const QString& service, const QIcon& icon) override;

 private:
  void send() const;

  GnomeShell& shell_;
  QString service_;
  QByteArray picture_;
  /// Runs while it is waited for. Also while the screen is locked the extension is away.
  QTimer patience_;
};

}  // namespace linux_desktop
