#pragma once

#include <optional>
#include <string>

namespace app {

/// Action of the microphone's shortcut: silences the microphone, or gives it back the level that it
/// had when this action last silenced it (100 when it never did in this process), and posts a
/// notification that says which. Which of the two is decided by the level that is read: the
/// microphone is muted exactly while that is "0". Without a level to read nothing is done.
///
/// Runs two scripts and waits for them; what goes wrong in one is printed. Main thread only.
void muteMicPressed();

/// The input volume as text; none if it cannot be told.
[[nodiscard]] std::optional<std::string> readInputVolume();

}  // namespace app
