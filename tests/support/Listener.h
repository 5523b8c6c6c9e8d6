#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "platform/foundation/NSNotificationCenter.h"

namespace tests {

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
