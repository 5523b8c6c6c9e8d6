#include "platform/appkit/NSAnimationContext.h"

#include <vector>

#include "platform/Runtime.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {
namespace {

/// The groups that are being described, the innermost last.
struct OpenGroups {
  std::vector<NSAnimationContext*> contexts;
};

std::vector<NSAnimationContext*>& openGroups() {
  return Runtime::current().instance<OpenGroups>()->contexts;
}

}  // namespace

void NSAnimationContext::runAnimationGroup(const Changes& changes,
                                           std::function<void()> completion) {
  NSAnimationContext context;
  openGroups().push_back(&context);
  changes(context);
  openGroups().pop_back();
  if (completion) {
    NSRunLoop::mainRunLoop().scheduleTimer(durationOf(context.duration()), std::move(completion));
  }
}

std::optional<AnimationTiming> NSAnimationContext::implicitTiming() {
  if (openGroups().empty()) return std::nullopt;
  const NSAnimationContext& context = *openGroups().back();
  if (!context.allowsImplicitAnimation()) return std::nullopt;
  return AnimationTiming{NSRunLoop::mainRunLoop().now(), durationOf(context.duration())};
}

}  // namespace platform
