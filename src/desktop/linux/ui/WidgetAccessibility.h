#pragma once

#include <QAccessible>

namespace linux_desktop {

/// What our widgets are to assistive technology, as Qt asks for it; null: what Qt has. A window is
/// one, without what is hidden in it; a LayerWidget that is a switch, and a checkbox, is a named
/// check box with a help text and the model's state, and can be pressed; a box is a group, selected
/// while it is marked; a file's path is a text; a MenuButton has its menu as a child while that is
/// open. Qt's cache of interfaces takes what is made over.
[[nodiscard]] QAccessibleInterface* accessibleOf(const QString& className, QObject* object);

}  // namespace linux_desktop
