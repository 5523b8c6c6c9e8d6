#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/harness/Process.h"
#include "desktop/linux/xserver/XEvents.h"
#include "desktop/linux/xserver/XServer.h"

/// The test's own process as a program on a private desktop, in which classes of ours run. It
/// handles events in `turn` and `until` only, and is to others a hung program else.
class TestProgram {
 public:
  /// This process's surroundings are the desktop's from here on. Its name is "Probe".
  explicit TestProgram(const harness::Environment& environment);
  ~TestProgram();
  TestProgram(const TestProgram&) = delete;
  TestProgram& operator=(const TestProgram&) = delete;

  [[nodiscard]] linux_desktop::XServer& server() { return *server_; }
  [[nodiscard]] linux_desktop::XEvents& events() { return *events_; }

  /// Handles what has arrived.
  void turn();
  /// Waits for the fact.
  [[nodiscard]] bool until(const std::function<bool()>& fact);

  /// What it has written to its log since it began.
  [[nodiscard]] const std::string& log() const;
  /// Waits for a line that matches, behind the one that was found last.
  [[nodiscard]] bool logs(const std::string& pattern);

 private:
  std::array<char, 6> name_{"Probe"};
  std::array<char*, 2> arguments_{name_.data(), nullptr};
  int argumentCount_ = 1;
  std::size_t found_ = 0;
  std::unique_ptr<QApplication> application_;
  std::unique_ptr<linux_desktop::XServer> server_;
  std::optional<linux_desktop::XEvents> events_;
};
