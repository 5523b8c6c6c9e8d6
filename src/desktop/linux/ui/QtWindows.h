#pragma once

#include "desktop/linux/ui/QtWindowPeer.h"
#include "desktop/linux/windowsystem/CoverFactory.h"
#include "platform/port/Program.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

/// Windows and alerts as Qt widgets. Needs the QApplication; one at a time.
class QtWindows final : public platform::port::Windows {
 public:
  /// `loop` is for its clock. `covers` makes the windows below all others; null: they never come to
  /// the screen. `keys` says what the keys of titled windows are; null: none is reported. All
  /// outlive this, as this does its peers.
  QtWindows(const platform::port::MainLoop& loop, OwnWindows& ownWindows,
            CoverFactory* covers = nullptr, KeyTranslator* keys = nullptr);
  ~QtWindows() override;
  QtWindows(const QtWindows&) = delete;
  QtWindows& operator=(const QtWindows&) = delete;

  [[nodiscard]] std::unique_ptr<platform::port::WindowPeer> createWindow(
      platform::NSWindow& window, platform::port::WindowClient& client) override;
  [[nodiscard]] std::unique_ptr<ModalPeer> showAlert(
      const platform::NSAlert& alert, std::function<void(std::size_t button)> answered) override;
  [[nodiscard]] std::unique_ptr<ModalPeer> showSheet(
      const platform::NSAlert& alert, platform::port::WindowPeer& window,
      std::function<void(std::size_t button)> answered) override;
  [[nodiscard]] std::unique_ptr<ModalPeer> showOpenPanel(
      const platform::NSOpenPanel& panel,
      std::function<void(std::optional<std::string> path)> answered) override;
  void activateApplication() override;
  void setDesktopKeysEnabled(bool enabled) override;
  /// Whether trays show status items has become otherwise, or is known now. What waited for that
  /// comes up; where they are shown, a window that has just come up in the place of a popover
  /// becomes that. One that the user has got used to stays.
  void statusItemsChanged();

 private:
  WindowServices services_;
  CoverFactory* covers_;
};

}  // namespace linux_desktop
