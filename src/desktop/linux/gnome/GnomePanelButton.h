#pragma once

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include "desktop/linux/gnome/GnomeShell.h"
#include "desktop/linux/windowsystem/PanelButton.h"

namespace linux_desktop {

/// A button of our extension's. It counts as there from the start, since the extension serves us a
/// moment later; where it then does not, or goes, it is not there any more.
class GnomePanelButton final : public PanelButton {
 public:
  /// `shell` outlives this.
  explicit GnomePanelButton(GnomeShell& shell);

  [[nodiscard]] bool isThere() const override { return isThere_; }
  void show(const QString& service, const QIcon& icon) override;

 private:
  void become(bool there);
  void send() const;

  GnomeShell& shell_;
  bool isThere_ = true;
  QString service_;
  QByteArray picture_;
  /// Also while the screen is locked the extension is away.
  QTimer patience_;
};

}  // namespace linux_desktop
