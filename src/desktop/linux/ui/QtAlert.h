#pragma once

#include <QMessageBox>
#include <functional>
#include <memory>

#include "desktop/linux/ui/WindowServices.h"
#include "platform/appkit/NSAlert.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

/// An alert in a message box that all windows of the application wait for.
class QtAlert final : public platform::port::Windows::AlertPeer {
 public:
  using Answered = std::function<void(std::size_t button)>;

  /// `services` outlive the alert. `answered` may destroy it.
  QtAlert(const platform::NSAlert& alert, Answered answered, WindowServices& services);
  ~QtAlert() override;
  QtAlert(const QtAlert&) = delete;
  QtAlert& operator=(const QtAlert&) = delete;

 private:
  void show();
  void finish(std::size_t button);
  void end();

  WindowServices& services_;
  Answered answered_;
  std::unique_ptr<QMessageBox> box_;
  bool ended_ = false;
};

}  // namespace linux_desktop
