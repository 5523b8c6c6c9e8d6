#pragma once

#include <optional>
#include <string>

#include "platform/foundation/Value.h"
#include "platform/port/Screens.h"

namespace platform::port {

/// The pictures behind everything, one a screen. Absent where the desktop offers no way to set
/// them. Main thread only; no operation takes longer than half a second.
class DesktopPictures {
 public:
  virtual ~DesktopPictures() = default;

  /// The absolute path of the picture that the screen shows. Where there is no file (a colour, a
  /// slide show), a path that stands for the present state. None for an unknown screen, or when the
  /// desktop does not answer.
  [[nodiscard]] virtual std::optional<std::string> path(const ScreenId& screen) const = 0;

  /// How the picture is shown at this moment: scaling and whatever else a set may touch. To be
  /// handed to `set`; what is in it is the desktop's own affair.
  [[nodiscard]] virtual std::optional<Dictionary> options(const ScreenId& screen) const = 0;

  /// Shows the picture at `path` with these options, but for what has to be another for it to be
  /// seen. Setting exactly the path that was last told for that screen puts back the state of that
  /// moment instead, whatever it was: of the options then only what sets have changed themselves,
  /// and the rest is as given. On failure nothing has changed and the reason comes back, in one
  /// line.
  [[nodiscard]] virtual std::optional<std::string> set(const std::string& path,
                                                       const ScreenId& screen,
                                                       const Dictionary& options) = 0;
};

}  // namespace platform::port
