#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/simulated/CallLog.h"
#include "desktop/simulated/SimulatedMainLoop.h"
#include "platform/appkit/NSEvent.h"
#include "platform/port/Windows.h"

namespace simulated {

/// Windows and alerts that nobody sees. What is pressed is a view of the model.
///
/// A window at its own frame is logged with what it looks like at that moment, "empty" or with the
/// text of its picture: "window.show behind at level -20, 0 0 1280 720 empty".
class SimulatedWindows final : public platform::port::Windows {
 public:
  SimulatedWindows(CallLog& log, SimulatedMainLoop& loop) : log_(log), loop_(loop) {}

  [[nodiscard]] std::unique_ptr<platform::port::WindowPeer> createWindow(
      platform::NSWindow& window, platform::port::WindowClient& client) override;
  [[nodiscard]] std::unique_ptr<ModalPeer> showAlert(
      const platform::NSAlert& alert, std::function<void(std::size_t)> answered) override;
  [[nodiscard]] std::unique_ptr<ModalPeer> showSheet(
      const platform::NSAlert& alert, platform::port::WindowPeer& window,
      std::function<void(std::size_t)> answered) override;
  [[nodiscard]] std::unique_ptr<ModalPeer> showOpenPanel(
      const platform::NSOpenPanel& panel,
      std::function<void(std::optional<std::string>)> answered) override;
  void activateApplication() override { log_.add("windows.activateApplication"); }

  void setDesktopKeysEnabled(bool enabled) override { desktopKeysEnabled_ = enabled; }
  [[nodiscard]] bool desktopKeysEnabled() const { return desktopKeysEnabled_; }

  // --- Levers: the user ---
  /// Press and release of the main button on a view, in the window that it is in.
  void press(platform::NSView& view);
  void release(platform::NSView& view);
  /// The user presses a key in the window that the application made key last.
  void pressKey(const platform::NSEvent& event);
  /// The user acts outside every window.
  void actElsewhere();
  /// The user wants every window closed.
  void escape();

  /// An alert on the screen.
  struct ShownAlert {
    std::string message;
    int style;
    std::vector<std::string> buttons;
    /// On one window, rather than in front of all.
    bool isSheet = false;
    std::string informative = {};
    bool operator==(const ShownAlert&) const = default;
  };
  [[nodiscard]] const std::vector<ShownAlert>& alerts() const { return alerts_; }
  void answerAlert(std::size_t button) {
    const auto answered = answered_.back();  // the answer may end the alert
    answered(button);
  }

  /// An open panel on the screen.
  struct ShownPanel {
    std::string message;
    std::string prompt;
    std::vector<std::string> types;
    bool files;
    bool directories;
  };
  [[nodiscard]] const std::optional<ShownPanel>& openPanel() const { return panel_; }
  /// The user chooses a file there, or nothing.
  void answerOpenPanel(std::optional<std::string> path) { chosen_(std::move(path)); }

  // --- What is there ---
  [[nodiscard]] std::size_t windowCount() const { return windows_.size(); }
  [[nodiscard]] std::size_t visibleWindowCount() const { return visibleWindows().size(); }
  /// The windows on the screen, the first made first. A borderless one is there once its peer knows
  /// of content.
  [[nodiscard]] std::vector<platform::NSWindow*> visibleWindows() const;
  /// Windows that are shown at their own frame, seen or not.
  [[nodiscard]] std::vector<platform::NSWindow*> covers() const;
  /// How often changes of the model reached a window.
  [[nodiscard]] int updates() const { return updates_; }

 private:
  bool desktopKeysEnabled_ = true;
  class Window;
  class Modal;
  [[nodiscard]] std::unique_ptr<ModalPeer> addAlert(const platform::NSAlert& alert, bool isSheet,
                                                    std::function<void(std::size_t)> answered);
  [[nodiscard]] Window& windowOf(platform::NSView& view);
  [[nodiscard]] std::vector<platform::NSWindow*> windowsThat(bool (Window::*are)() const) const;

  CallLog& log_;
  SimulatedMainLoop& loop_;
  std::vector<Window*> windows_;
  std::vector<ShownAlert> alerts_;
  std::vector<std::function<void(std::size_t)>> answered_;
  std::optional<ShownPanel> panel_;
  std::function<void(std::optional<std::string>)> chosen_;
  /// The window that was made key last; null when it went.
  Window* keyWindow_ = nullptr;
  int updates_ = 0;
};

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
