#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "demo/Observation.h"
#include "desktop/harness/AccessibilityClient.h"
#include "desktop/harness/XDesk.h"

namespace demo {

/// Calmdeck on a private desktop, worked with a mouse and a shortcut: the mode goes on and off, the
/// microphone off and on, and what changed is read by foreign clients. Throws std::runtime_error
/// when a step cannot be done.
class Demonstration {
 public:
  /// Screenshots go to `folder`, which is made.
  explicit Demonstration(const std::filesystem::path& folder);

  /// Runs all of it and returns whether everything changed and returned; prints as it goes.
  [[nodiscard]] bool run();

 private:
  [[nodiscard]] std::vector<Observation> observations();
  [[nodiscard]] std::string hiddenWindows() const;
  /// A picture and files on the desktop, so that there is something to cover and to swap.
  void furnishDesktop();
  void openWindows();
  void startProgram();
  void openPanel();
  void closePanel();
  /// One real click on the switch of this name; returns once it has the other state.
  void clickSwitch(const std::string& name);
  void screenshot(const std::string& name);
  void endProgram();

  std::filesystem::path folder_;
  harness::XDesk desk_;
  harness::AccessibilityClient reader_;
  std::unique_ptr<harness::Process> program_;
  std::vector<harness::WindowInfo> windows_;
  harness::Rect icon_;
};

}  // namespace demo
