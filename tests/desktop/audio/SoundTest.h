#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "desktop/harness/PrivateHome.h"
#include "desktop/harness/Process.h"
#include "desktop/harness/SoundServer.h"
#include "desktop/linux/audio/PulseSound.h"

/// What the room prints by default, line by line. Also from the thread of the loop.
class Warnings {
 public:
  Warnings() {
    clear();
    previous_ = qInstallMessageHandler(&Warnings::take);
  }
  ~Warnings() { qInstallMessageHandler(previous_); }
  Warnings(const Warnings&) = delete;
  Warnings& operator=(const Warnings&) = delete;

  static std::vector<std::string> lines() {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  static void clear() {
    const std::lock_guard lock(mutex_);
    lines_.clear();
  }
  static void take(QtMsgType, const QMessageLogContext& context, const QString& text) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(std::string(context.category) + ": " + text.toStdString());
  }

  static inline std::mutex mutex_;
  static inline std::vector<std::string> lines_;
  QtMessageHandler previous_ = nullptr;
};

/// With a home of its own, in which each test starts the sound server of its kind.
class SoundTest : public testing::TestWithParam<harness::SoundServerKind> {
 protected:
  SoundTest() {
    for (const auto& [name, value] : home_.environment()) qputenv(name.c_str(), value.c_str());
    qunsetenv("PULSE_SERVER");
    qunsetenv("DISPLAY");
  }

  /// Of a server that is well, also on a machine with much else to do.
  static constexpr std::chrono::seconds kLongestWait{2};

  [[nodiscard]] harness::SoundServer serve(
      std::vector<std::string> sinks = {"out1"},
      harness::SoundServer::Start start = harness::SoundServer::Start::Now) const {
    return {GetParam(), home_.environment(), std::move(sinks), start};
  }

  // For what the copy learns from the server by itself.
  static bool soon(const std::function<bool()>& fact) {
    return harness::until(fact, harness::kPatience, [] { QCoreApplication::processEvents(); });
  }
  [[nodiscard]] static std::vector<std::string> warnings() { return Warnings::lines(); }

 private:
  Warnings captured_;
  harness::PrivateHome home_;
};
