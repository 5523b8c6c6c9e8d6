#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "desktop/harness/AccessibilityClient.h"
#include "desktop/harness/XDesk.h"

/// A private desktop and the program on it, used as a person uses it. What waits for a fact says
/// whether it came.
class ProgramDesk {
 public:
  explicit ProgramDesk(const harness::DeskOptions& options) : desk(options) {}

  /// Starts the program, for the first time or anew, and returns when its panel has opened by
  /// itself and has the keyboard.
  [[nodiscard]] bool start() {
    program.reset();
    program = desk.startCalmdeck(harness::AccessibilityClient::accessibleEnvironment());
    return opens();
  }

  /// Waits for the next line of the program's output that is exactly `text`.
  [[nodiscard]] bool says(const std::string& text) {
    return program->waitForLine("^" + text + "$").has_value();
  }
  /// The lines on standard error so far that speak of `topic`; without Qt's own remarks.
  [[nodiscard]] std::vector<std::string> complaints(const std::string& topic) const {
    return program->lines("calmdeck." + topic, harness::Stream::Error);
  }

  [[nodiscard]] bool opens() {
    const auto active = [&] {
      const auto popover = desk.openPopover();
      return popover && desk.windows().active() == popover->id;
    };
    if (!desk.until(active)) return false;
    // It may move once more, to where the icon turned out to be.
    (void)desk.screen().settled(popoverArea(), std::chrono::milliseconds(100));
    return true;
  }
  [[nodiscard]] bool closes() {
    return desk.until([&] { return !desk.openPopover(); });
  }
  /// By the keyboard, if it is open.
  [[nodiscard]] bool close() {
    if (desk.openPopover()) desk.input().key("Escape");
    return closes();
  }
  [[nodiscard]] harness::Rect popoverArea() const {
    const auto popover = desk.openPopover();
    return popover ? popover->area : harness::Rect{};
  }
  /// Clicks on the tray icon, once there is one.
  [[nodiscard]] bool clickIcon(harness::Button button = harness::Button::Left) {
    const auto icon = desk.trayIcon();
    if (icon) desk.input().click(icon->centreX(), icon->centreY(), button);
    return icon.has_value();
  }
  /// Clicks for the icon's menu and returns when that is drawn.
  [[nodiscard]] bool openMenu() {
    return desk.opensAWindow([this] { (void)clickIcon(harness::Button::Right); });
  }
  /// Has the open menu end the program, by the keyboard.
  [[nodiscard]] bool quits() {
    // From the menu's beginning Up goes round to its last item.
    for (const char* key : {"Up", "Return"}) desk.input().key(key);
    return program->waitForExit() == harness::ProcessEnd{0, 0};
  }

  /// Clicks on a control of an open window, by the name that a screen reader says.
  [[nodiscard]] bool click(const std::string& name) {
    const auto found = reader.await(name);
    if (found) desk.input().click(found->area.centreX(), found->area.centreY());
    return found.has_value();
  }
  /// Switches on the speaker's feature, then the mode.
  [[nodiscard]] bool muteByTheMode() {
    return click(kSpeaker) && click(kMaster) && sinkMuted(true);
  }
  /// Waits until every monitor has its cover, or none has.
  [[nodiscard]] bool covered(bool covered) {
    return desk.until(
        [&] { return covered ? desk.everyMonitorIsCovered() : desk.covers().empty(); });
  }
  /// Waits until the real sink is muted or not, by its server's own client.
  [[nodiscard]] bool sinkMuted(bool muted) {
    return desk.until([&] { return desk.sound().sinkMuted(kSink) == muted; });
  }

  static constexpr const char* kMaster = "Presentation mode";
  static constexpr const char* kSpeaker = "Mute speaker";
  static constexpr const char* kSink = "out1";

  harness::XDesk desk;
  harness::AccessibilityClient reader{desk};
  std::unique_ptr<harness::Process> program;
};
