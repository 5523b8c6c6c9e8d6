#pragma once

#include <functional>
#include <optional>
#include <string>

#include "desktop/linux/ui/ModalDialog.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

/// An open panel as a file dialog, for which all windows of the application wait.
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
