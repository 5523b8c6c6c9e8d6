#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/ui/WindowServices.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSOpenPanel.h"
#include "platform/port/Windows.h"

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
  void comeInFrontOf(const QtWindowPeer& behind, OwnWindows::Popover& popover);

  WindowServices& services_;
  QtWindowPeer* window_;
  std::unique_ptr<QDialog> dialog_;
  bool ended_ = false;
  /// Of an alert that stands in front of a window which the desktop keeps in front of all others.
  std::unique_ptr<OwnWindows::Popover> popover_;
};

/// An alert in a message box.
class QtAlert final : public platform::port::Windows::ModalPeer {
 public:
  using Answered = std::function<void(std::size_t button)>;

  /// `sheetOf` waits for the answer; null: all windows of the application do. `services` outlive
  /// the alert. `answered` may destroy it.
  QtAlert(const platform::NSAlert& alert, Answered answered, QtWindowPeer* sheetOf,
          WindowServices& services);

 private:
  [[nodiscard]] std::unique_ptr<QDialog> boxFor(const platform::NSAlert& alert, bool isSheet);
  void finish(std::size_t button);

  Answered answered_;
  ModalDialog dialog_;
};

/// An open panel as the desktop's own dialog for files, or Qt's where there is none. All windows of
/// the application wait for it. It begins in the user's folder of pictures, offers files of the
/// panel's types alone, and any other that somebody types the name of counts as no answer.
class QtOpenPanel final : public platform::port::Windows::ModalPeer {
 public:
  using Answered = std::function<void(std::optional<std::string> path)>;

  /// `services` outlive it. `answered` may destroy it.
  QtOpenPanel(const platform::NSOpenPanel& panel, Answered answered, WindowServices& services);

 private:
  [[nodiscard]] std::unique_ptr<QDialog> dialogFor(const platform::NSOpenPanel& panel);
  void finish(std::optional<std::string> path);

  Answered answered_;
  ModalDialog dialog_;
};

}  // namespace linux_desktop
