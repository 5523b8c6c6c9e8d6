#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QLoggingCategory>
#include <array>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <regex>
#include <stdexcept>
#include <string>

#include "desktop/harness/Process.h"
#include "desktop/linux/xserver/XEvents.h"
#include "desktop/linux/xserver/XServer.h"

/// The test's own process as a program on a private desktop, in which classes of ours run. It
/// handles events in `turn` and `until` only, and is to others a hung program else.
class TestProgram {
 public:
  /// This process's surroundings are the desktop's from here on. Its name is "Probe".
  explicit TestProgram(const harness::Environment& environment) {
    clearenv();
    for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
    log_.clear();
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& line) {
      log_ += line.toStdString() + '\n';
    });
    application_ = std::make_unique<QApplication>(argumentCount_, arguments_.data());
    QApplication::setApplicationDisplayName(QStringLiteral("Probe"));
    server_ = linux_desktop::XServer::connect();
    if (!server_) throw std::runtime_error("no X server: " + log_);
    events_.emplace(*server_);
  }
  ~TestProgram() { qInstallMessageHandler(nullptr); }
  TestProgram(const TestProgram&) = delete;
  TestProgram& operator=(const TestProgram&) = delete;

  [[nodiscard]] linux_desktop::XServer& server() { return *server_; }
  [[nodiscard]] linux_desktop::XEvents& events() { return *events_; }

  /// Handles what has arrived.
  void turn() {
    events_->dispatch();
    QApplication::processEvents();
  }
  /// Waits for the fact.
  [[nodiscard]] bool until(const std::function<bool()>& fact) {
    return harness::until(fact, harness::kPatience, [this] { turn(); });
  }

  /// What it has written to its log since it began.
  [[nodiscard]] const std::string& log() const { return log_; }
  /// Waits for a line that matches, behind the one that was found last.
  [[nodiscard]] bool logs(const std::string& pattern) {
    const std::regex wanted(pattern);
    return until([&] {
      for (std::size_t end = 0; (end = log_.find('\n', found_)) != std::string::npos;) {
        const std::string line = log_.substr(found_, end - found_);
        found_ = end + 1;
        if (std::regex_search(line, wanted)) return true;
      }
      return false;
    });
  }

 private:
  /// Of the process, as Qt's handler of messages is.
  static inline std::string log_;
  std::array<char, 6> name_{"Probe"};
  std::array<char*, 2> arguments_{name_.data(), nullptr};
  int argumentCount_ = 1;
  std::size_t found_ = 0;
  std::unique_ptr<QApplication> application_;
  std::unique_ptr<linux_desktop::XServer> server_;
  std::optional<linux_desktop::XEvents> events_;
};
