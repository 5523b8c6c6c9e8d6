#pragma once

namespace linux_desktop {

/// Tells assistive technology what our widgets are: a window is one, without what is hidden in it;
/// a LayerWidget that is a switch, and a checkbox, is a named check box with a help text and the
/// model's state, and can be pressed; a box is a group, selected while it is marked; a file's path
/// is a text; a MenuButton has its menu as a child while that is open. Holds for as long as the
/// object lives.
class WidgetAccessibility {
 public:
  WidgetAccessibility();
  ~WidgetAccessibility();
  WidgetAccessibility(const WidgetAccessibility&) = delete;
  WidgetAccessibility& operator=(const WidgetAccessibility&) = delete;
};

}  // namespace linux_desktop
