#pragma once

#include <functional>
#include <optional>

#include "platform/appkit/NSColor.h"
#include "platform/foundation/Geometry.h"
#include "platform/port/Program.h"

namespace platform {

/// When and for how long a change is animated.
struct AnimationTiming {
  MonotonicTime start;
  Duration duration;
};

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
  void setDuration(double seconds) { duration_ = seconds; }
  /// Whether changes without an animator proxy animate too; false at first.
  void setAllowsImplicitAnimation(bool allows) { allowsImplicitAnimation_ = allows; }

 private:
  double duration_ = 0.25;
  bool allowsImplicitAnimation_ = false;
};

/// How far an animation is, from 0 to 1, when `elapsed` of `duration` has passed: the platform's
/// default timing curve, a cubic Bézier through (0.25, 0.1) and (0.25, 1).
[[nodiscard]] double animationProgress(Duration elapsed, Duration duration);

[[nodiscard]] double interpolate(double from, double to, double progress);
[[nodiscard]] NSRect interpolate(const NSRect& from, const NSRect& to, double progress);
[[nodiscard]] NSColor interpolate(const NSColor& from, const NSColor& to, double progress);

/// A property with a model value, which is what was set last, and a presentation value, which is
/// what is on the screen at a given time. An animation that interrupts another starts from where
/// the other is at that moment; a change without timing takes effect at once and ends what was
/// running.
template <typename T>
class Animatable {
 public:
  Animatable() = default;
  explicit Animatable(T value) : model_(std::move(value)) {}

  [[nodiscard]] const T& model() const { return model_; }

  [[nodiscard]] T presentation(MonotonicTime time) const {
    if (!isAnimating(time)) return model_;
    return interpolate(from_, model_, animationProgress(time - timing_->start, timing_->duration));
  }

  [[nodiscard]] bool isAnimating(MonotonicTime time) const {
    return timing_ && time < timing_->start + timing_->duration;
  }

  void set(T value, const std::optional<AnimationTiming>& timing) {
    if (timing) from_ = presentation(timing->start);
    model_ = std::move(value);
    timing_ = timing;
  }

 private:
  T model_{};
  T from_{};
  std::optional<AnimationTiming> timing_;
};

}  // namespace platform
