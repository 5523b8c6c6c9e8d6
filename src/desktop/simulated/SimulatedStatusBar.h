#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desktop/simulated/CallLog.h"
#include "desktop/simulated/SimulatedWindows.h"
#include "platform/appkit/NSEvent.h"
#include "platform/port/Windows.h"

namespace simulated {

/// A status area with room for one item.
class SimulatedStatusBar final : public platform::port::StatusBar {
 public:
  SimulatedStatusBar(CallLog& log, SimulatedWindows& windows) : log_(log), windows_(windows) {}

  [[nodiscard]] std::unique_ptr<platform::port::StatusItemPeer> createStatusItem(
      platform::port::StatusItemClient& client) override;
  [[nodiscard]] bool itemsHaveButtons() const override { return hasButtons; }

  // --- Levers ---
  bool hasButtons = true;
  [[nodiscard]] bool hasItem() const { return client_ != nullptr; }
  /// The name of the item's image, empty when it has none.
  [[nodiscard]] const std::string& image() const { return image_; }
  [[nodiscard]] const std::string& toolTip() const { return toolTip_; }
  /// The lines of the menu; none while it is not open.
  [[nodiscard]] const std::optional<std::vector<std::string>>& menu() const { return menu_; }

  void click(platform::NSEventType type) {
    if (type == platform::NSEventType::RightMouseUp) windows_.actElsewhere();
    client_->statusItemClicked(type);
  }
  void leftClick() { click(platform::NSEventType::LeftMouseUp); }
  void rightClick() { click(platform::NSEventType::RightMouseUp); }
  /// Chooses the line with that title, which closes the menu.
  void choose(std::string_view title);
  void closeMenu();

 private:
  class Peer;

  CallLog& log_;
  SimulatedWindows& windows_;
  platform::port::StatusItemClient* client_ = nullptr;
  std::string image_;
  std::string toolTip_;
  std::optional<std::vector<std::string>> menu_;
};

}  // namespace simulated
