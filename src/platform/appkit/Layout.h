#pragma once

namespace platform {

class NSView;

/// Gives the subviews of `root`, and `root` itself where it leaves its size to constraints, the
/// frames that the active constraints among them say. Each is an equality, so what is known is
/// passed along them until nothing new comes to be known; what stays unknown keeps its value.
void layoutChildren(NSView& root);

}  // namespace platform
