#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "desktop/harness/AccessibilityClient.h"
#include "desktop/harness/XDesk.h"

/// A private desktop and the program on it, used as a person uses it. What waits for a fact fails
/// with what the program wrote.
class ProgramDesk {
 public:
  explicit ProgramDesk(const harness::DeskOptions& options) : desk_(options) {}

  [[nodiscard]] harness::XDesk& desk() { return desk_; }
  [[nodiscard]] harness::Process& program() { return *program_; }

  /// Starts the program, for the first time or anew, and returns when its panel has opened by
  /// itself and has the keyboard.
  [[nodiscard]] testing::AssertionResult start();
  /// The same without waiting for anything.
  void launch();

  /// Waits for the next line of the program's output that is exactly `text`.
  [[nodiscard]] testing::AssertionResult says(const std::string& text);
  /// The lines on standard error so far that speak of `topic`; without Qt's own remarks.
  [[nodiscard]] std::vector<std::string> complaints(const std::string& topic) const {
    return program_->lines("calmdeck." + topic, harness::Stream::Error);
  }

  [[nodiscard]] testing::AssertionResult opens();
  [[nodiscard]] testing::AssertionResult closes();
  [[nodiscard]] harness::Rect popoverArea() const;
  /// Clicks on the tray icon, once there is one.
  [[nodiscard]] testing::AssertionResult clickIcon(harness::Button button = harness::Button::Left);
  /// Clicks for the icon's menu and returns when that is drawn.
  [[nodiscard]] testing::AssertionResult openMenu();
  /// Has the open menu end the program, by the keyboard.
  [[nodiscard]] testing::AssertionResult quits();
  /// The tray icon's pixels at rest, without the pointer on them.
  [[nodiscard]] harness::Image iconImage() const;

  /// Clicks on a switch of the open panel, by the name that a screen reader says.
  [[nodiscard]] testing::AssertionResult clickSwitch(const std::string& name);
  /// Switches on the speaker's feature, then the mode.
  [[nodiscard]] testing::AssertionResult muteByTheMode();
  /// What a screen reader is told to be on, once that is exactly `names`.
  [[nodiscard]] testing::AssertionResult switchedOn(const std::set<std::string>& names) const;
  /// Waits until the real sink is muted or not, by its server's own client.
  [[nodiscard]] testing::AssertionResult sinkMuted(bool muted);

  static constexpr const char* kMaster = "Presentation mode";
  static constexpr const char* kSpeaker = "Mute speaker";
  static constexpr const char* kSink = "out1";

 private:
  [[nodiscard]] testing::AssertionResult verdict(bool holds, const std::string& claim) const;

  harness::XDesk desk_;
  harness::AccessibilityClient reader_{desk_};
  std::unique_ptr<harness::Process> program_;
};
