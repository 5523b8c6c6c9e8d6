#pragma once

#include <functional>
#include <optional>

#include "platform/appkit/Animatable.h"

namespace platform {

/// The animation group that is being described. Main thread only.
class NSAnimationContext {
 public:
  using Changes = std::function<void(NSAnimationContext& context)>;

  /// Runs `changes` at once; what they set animates as the context says, from the moment of the
  /// call. `completion` runs on the main loop when the group's duration has passed, once, also when
  /// a later group has taken over some of its properties. Groups nest; the inner one holds.
  static void runAnimationGroup(const Changes& changes, std::function<void()> completion = {});

  /// The timing for a change made now, or none when it is to take effect at once.
  [[nodiscard]] static std::optional<AnimationTiming> implicitTiming();

  /// Seconds, from 0; the platform's default is a quarter of a second.
  [[nodiscard]] double duration() const { return duration_; }
  void setDuration(double seconds) { duration_ = seconds; }
  /// Whether changes without an animator proxy animate too; false at first.
  [[nodiscard]] bool allowsImplicitAnimation() const { return allowsImplicitAnimation_; }
  void setAllowsImplicitAnimation(bool allows) { allowsImplicitAnimation_ = allows; }

 private:
  double duration_ = 0.25;
  bool allowsImplicitAnimation_ = false;
};

}  // namespace platform
