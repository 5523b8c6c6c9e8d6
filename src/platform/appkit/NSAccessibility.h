#pragma once

namespace platform {

/// What kind of thing a view is to assistive technology.
enum class NSAccessibilityRole { Unknown, Group, StaticText, Image, Switch, Button, CheckBox };

}  // namespace platform
