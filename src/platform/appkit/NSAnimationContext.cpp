#include "platform/appkit/NSAnimationContext.h"

#include <cmath>
#include <utility>

#include "platform/Runtime.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {
namespace {

struct OpenGroup {
  /// The innermost; null outside of every group.
  NSAnimationContext* context = nullptr;
};

NSAnimationContext*& openGroup() {
  return Runtime::current().instance<OpenGroup>()->context;
}

// Control points of the default timing curve; the ends are (0, 0) and (1, 1).
constexpr double kX1 = 0.25;
constexpr double kY1 = 0.1;
constexpr double kX2 = 0.25;
constexpr double kY2 = 1.0;

double bezier(double p1, double p2, double t) {
  const double u = 1 - t;
  return 3 * u * u * t * p1 + 3 * u * t * t * p2 + t * t * t;
}

}  // namespace

void NSAnimationContext::runAnimationGroup(const Changes& changes,
                                           std::function<void()> completion) {
  NSAnimationContext context;
  NSAnimationContext* const outer = std::exchange(openGroup(), &context);
  changes(context);
  openGroup() = outer;
  if (completion) {
    NSRunLoop::mainRunLoop().scheduleTimer(durationOf(context.duration_), std::move(completion));
  }
}

std::optional<AnimationTiming> NSAnimationContext::implicitTiming() {
  const NSAnimationContext* context = openGroup();
  if (context == nullptr || !context->allowsImplicitAnimation_) return std::nullopt;
  return AnimationTiming{NSRunLoop::mainRunLoop().now(), durationOf(context->duration_)};
}

double animationProgress(Duration elapsed, Duration duration) {
  if (elapsed <= Duration::zero()) return 0;
  if (elapsed >= duration) return 1;
  const double x = std::chrono::duration<double>(elapsed) / std::chrono::duration<double>(duration);
  // x(t) rises, so bisection finds its t; 24 halvings are below a pixel by far.
  double low = 0;
  double high = 1;
  for (int i = 0; i < 24; ++i) {
    const double middle = (low + high) / 2;
    (bezier(kX1, kX2, middle) < x ? low : high) = middle;
  }
  return bezier(kY1, kY2, (low + high) / 2);
}

double interpolate(double from, double to, double progress) {
  return std::lerp(from, to, progress);
}

NSRect interpolate(const NSRect& from, const NSRect& to, double progress) {
  return {std::lerp(from.x, to.x, progress), std::lerp(from.y, to.y, progress),
          std::lerp(from.width, to.width, progress), std::lerp(from.height, to.height, progress)};
}

NSColor interpolate(const NSColor& from, const NSColor& to, double progress) {
  return from.blendedColorWithFraction(progress, to);
}

}  // namespace platform
