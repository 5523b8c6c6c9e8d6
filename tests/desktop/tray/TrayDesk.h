#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "desktop/harness/XDesk.h"

/// A desktop with one panel and the probe, which prints what its status item is told.
class TrayDesk {
 public:
  explicit TrayDesk(harness::Panel panel, bool sessionBus = true);

  [[nodiscard]] harness::XDesk& desk() { return desk_; }
  /// Starts the panel, again or at last.
  void startPanel() { desk_.startPanel(panel_); }

  /// Returns once the probe runs.
  void startProbe(const std::vector<std::string>& arguments = {});
  [[nodiscard]] harness::Process& probe() { return *probe_; }
  /// Waits for the next line of the probe that is exactly `text`.
  [[nodiscard]] testing::AssertionResult says(const std::string& text);
  /// What the status item was told so far, joined with spaces; without the rest of what it prints.
  [[nodiscard]] std::string reports() const;

  /// Waits until the icon shows in this colour and gives its area.
  std::optional<harness::Rect> icon(std::uint32_t colour = kSquare);
  /// Clicks where icon() found it last.
  void click(harness::Button button);
  /// Clicks with the right button and waits until the menu can be used.
  [[nodiscard]] testing::AssertionResult openMenu();
  /// Presses Escape and waits until the menu is gone.
  [[nodiscard]] testing::AssertionResult escapeMenu();

  static constexpr std::uint32_t kSquare = 0xFF00FF;
  static constexpr std::uint32_t kDisc = 0x00FF00;

 private:
  [[nodiscard]] std::optional<harness::Rect> areaOf(std::uint32_t colour) const;

  harness::Panel panel_;
  harness::XDesk desk_;
  std::unique_ptr<harness::Process> probe_;
  harness::Rect icon_;
  std::set<std::uint32_t> withoutMenu_;  // the windows on the screen before the menu opened
};
