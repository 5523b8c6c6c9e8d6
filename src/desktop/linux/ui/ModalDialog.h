#pragma once

#include <QDialog>
#include <memory>

#include "desktop/linux/ui/WindowServices.h"

namespace linux_desktop {

/// A dialog for which one window of ours waits, or all of them, until it ends: what waits takes no
/// input. It gets the keyboard when it comes, and gives it back when it goes.
class ModalDialog {
 public:
  /// `window` waits, and the others do not; null: all wait. `services` outlive this.
  ModalDialog(std::unique_ptr<QDialog> dialog, QtWindowPeer* window, WindowServices& services);
  /// Takes the dialog away; may be called by the dialog's own event. None of its signals comes any
  /// more.
  ~ModalDialog();
  ModalDialog(const ModalDialog&) = delete;
  ModalDialog& operator=(const ModalDialog&) = delete;

  void show();
  /// The user has answered, though the dialog may be there a little longer.
  void end();

 private:
  [[nodiscard]] QtWindowPeer* windowBehind() const;

  WindowServices& services_;
  QtWindowPeer* window_;
  std::unique_ptr<QDialog> dialog_;
  bool ended_ = false;
};

}  // namespace linux_desktop
