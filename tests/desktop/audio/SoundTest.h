#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "desktop/harness/EventLoopTest.h"
#include "desktop/harness/PrivateHome.h"
#include "desktop/harness/SoundServer.h"
#include "desktop/linux/audio/PulseSound.h"

/// With a home of its own, in which each test starts the sound server of its kind.
class SoundTest : public harness::EventLoopTest<testing::TestWithParam<harness::SoundServerKind>> {
 protected:
  SoundTest() {
    (void)warnings();
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext& context, const QString& text) {
      const std::lock_guard lock(mutex_);
      lines_.push_back(std::string(context.category) + ": " + text.toStdString());
    });
    for (const auto& [name, value] : home_.environment()) qputenv(name.c_str(), value.c_str());
    qunsetenv("PULSE_SERVER");
    qunsetenv("DISPLAY");
  }

  ~SoundTest() override { qInstallMessageHandler(nullptr); }

  /// Of a server that is well, also on a machine with much else to do.
  static constexpr std::chrono::seconds kLongestWait{2};

  [[nodiscard]] harness::SoundServer serve(
      std::vector<std::string> sinks = {"out1"},
      harness::SoundServer::Start start = harness::SoundServer::Start::Now) const {
    return {GetParam(), home_.environment(), std::move(sinks), start};
  }

  /// What the room has printed since this was last asked, also from the thread of the loop.
  [[nodiscard]] static std::vector<std::string> warnings() {
    const std::lock_guard lock(mutex_);
    return std::exchange(lines_, {});
  }

 private:
  static inline std::mutex mutex_;
  static inline std::vector<std::string> lines_;
  harness::PrivateHome home_;
};
