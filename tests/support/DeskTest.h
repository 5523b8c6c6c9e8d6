#pragma once

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/Runtime.h"
#include "platform/foundation/NSCoder.h"
#include "platform/foundation/NSNotificationCenter.h"

namespace tests {

/// The layer on a simulated desktop. Fails a test that leaves something behind.
class DeskTest : public ::testing::Test {
 protected:
  DeskTest() { begin(); }
  ~DeskTest() override { end(); }

  void begin() { runtime_ = std::make_unique<platform::Runtime>(desk.desktop); }
  void end() {
    desk.countObservers();
    runtime_.reset();
    EXPECT_EQ(desk.leftBehind(), std::vector<std::string>{});
  }

  simulated::SimulatedDesktop desk;

 private:
  std::unique_ptr<platform::Runtime> runtime_;
};

/// An interface description of one object, as a map.
class Attributes final : public platform::NSCoder {
 public:
  using Map = std::map<std::string, std::string, std::less<>>;

  Attributes(std::initializer_list<Map::value_type> values = {}) : values_(values) {}

  [[nodiscard]] std::optional<std::string_view> attribute(std::string_view name) const override {
    const auto found = values_.find(name);
    if (found == values_.end()) return std::nullopt;
    return found->second;
  }

 private:
  Map values_;
};

/// An observer that remembers what it was told. It answers "heard:" and "called".
class Listener final : public platform::NSObject {
 public:
  struct Heard {
    std::string name;
    std::optional<platform::Dictionary> userInfo;
    const platform::NSObject* sender = nullptr;
    bool operator==(const Heard&) const = default;
  };
  std::vector<Heard> notifications;
  int calls = 0;
  /// What it does when it hears something.
  std::function<void()> reaction;

  void heard(const platform::NSNotification& notification) {
    notifications.push_back({notification.name(), notification.userInfo(), notification.object()});
    if (reaction) reaction();
  }
  void called() { ++calls; }

  [[nodiscard]] const platform::ClassDescription& classDescription() const override {
    static constexpr std::array messages{platform::message<&Listener::heard>("heard:"),
                                         platform::message<&Listener::called>("called")};
    static constexpr platform::ClassDescription description{.className = "Listener",
                                                            .messages = messages};
    return description;
  }
};

}  // namespace tests
