#pragma once

namespace linux_desktop {

/// Tells assistive technology what LayerWidgets are: a switch is a named check box with a help text
/// and a state, and can be pressed. Holds for as long as the object lives.
class LayerAccessibility {
 public:
  LayerAccessibility();
  ~LayerAccessibility();
  LayerAccessibility(const LayerAccessibility&) = delete;
  LayerAccessibility& operator=(const LayerAccessibility&) = delete;
};

}  // namespace linux_desktop
