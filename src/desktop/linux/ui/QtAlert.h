#pragma once

#include <QMessageBox>
#include <functional>
#include <memory>

#include "desktop/linux/ui/ModalDialog.h"
#include "platform/appkit/NSAlert.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

/// An alert in a message box.
class QtAlert final : public platform::port::Windows::ModalPeer {
 public:
  using Answered = std::function<void(std::size_t button)>;

  /// `sheetOf` waits for the answer; null: all windows of the application do. `services` outlive
  /// the alert. `answered` may destroy it.
  QtAlert(const platform::NSAlert& alert, Answered answered, QtWindowPeer* sheetOf,
          WindowServices& services);

 private:
  [[nodiscard]] std::unique_ptr<QMessageBox> boxFor(const platform::NSAlert& alert, bool isSheet);
  void finish(std::size_t button);

  Answered answered_;
  ModalDialog dialog_;
};

}  // namespace linux_desktop
