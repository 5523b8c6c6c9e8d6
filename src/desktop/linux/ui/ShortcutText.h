#pragma once

#include <QString>

namespace linux_desktop {

// A shortcut is written as the symbols of its modifiers and the text of its key, "⌃⌥p", alone or at
// the end of a text. Texts without such symbols stay as they are.

/// With its key by name, "⌃⌥Home", where that is a character that nobody can read.
[[nodiscard]] QString readableShortcut(const QString& text);
/// As keyboards here are labelled and a screen reader says it, "Ctrl+Alt+P".
[[nodiscard]] QString shortcutInWords(const QString& text);

}  // namespace linux_desktop
