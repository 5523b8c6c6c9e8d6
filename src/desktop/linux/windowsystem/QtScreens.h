#pragma once

#include <QObject>
#include <QTimer>

#include "desktop/linux/wallpaper/Backdrop.h"
#include "platform/port/Screens.h"

namespace linux_desktop {

/// The screens as Qt tells them, in Qt's own units: for a window system that has no better source.
class QtScreens final : public platform::port::Screens {
 public:
  /// Needs the application object.
  QtScreens();

  void setClient(platform::port::ScreensClient* client) override { client_ = client; }
  [[nodiscard]] std::vector<platform::port::ScreenInfo> screens() const override;
  /// The same screens, as far as Qt tells of pixels.
  [[nodiscard]] std::vector<Monitor> monitors() const;

 private:
  platform::port::ScreensClient* client_ = nullptr;
  /// Gathers the signals of one change.
  QTimer settling_;
};

}  // namespace linux_desktop
