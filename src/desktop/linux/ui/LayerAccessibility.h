#pragma once

namespace linux_desktop {

/// Tells assistive technology what our widgets are: a LayerWidget that is a switch is a named check
/// box with a help text and a state, and can be pressed; a MenuButton has its menu as a child while
/// that is open. Holds for as long as the object lives.
class LayerAccessibility {
 public:
  LayerAccessibility();
  ~LayerAccessibility();
  LayerAccessibility(const LayerAccessibility&) = delete;
  LayerAccessibility& operator=(const LayerAccessibility&) = delete;
};

}  // namespace linux_desktop
