#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/Value.h"

namespace platform::port {

/// Names a screen for as long as it is connected; the same screen gets the same id when it comes
/// back.
using ScreenId = std::string;

struct ScreenInfo {
  ScreenId id;
  /// In points; y up from the bottom of the first screen.
  NSRect frame;
  /// Pixels of the screen for each point.
  double backingScaleFactor = 1;

  bool operator==(const ScreenInfo&) const = default;
};

class ScreensClient {
 public:
  virtual ~ScreensClient() = default;
  /// Screens came, went, or changed their size, place or order. Once for each change that a user
  /// would call one; `screens` already tells the new state.
  virtual void screenParametersDidChange() = 0;
};

/// The screens of the machine. Reads are answered from memory. Main thread only.
class Screens {
 public:
  virtual ~Screens() = default;
  /// Null: nobody is told. The client outlives its being set.
  virtual void setClient(ScreensClient* client) = 0;
  /// The primary one first. Never empty while the desktop lives.
  [[nodiscard]] virtual std::vector<ScreenInfo> screens() const = 0;
};

class SpacesClient {
 public:
  virtual ~SpacesClient() = default;
  /// The user went to another space (workspace), or the desktop picture of the present one is
  /// another now. Changes that follow each other at once are told once.
  virtual void activeSpaceDidChange() = 0;
};

/// The spaces that the user switches between. Absent where the desktop does not tell.
class Spaces {
 public:
  virtual ~Spaces() = default;
  /// Null: nobody is told, and nothing is watched. The client outlives its being set.
  virtual void setClient(SpacesClient* client) = 0;
};

/// A picture that was captured. The desktop keeps the pixels; whoever shows it hands it back.
class Capture {
 public:
  virtual ~Capture() = default;
  [[nodiscard]] virtual std::size_t pixelWidth() const = 0;
  [[nodiscard]] virtual std::size_t pixelHeight() const = 0;
};

/// The windows on the screen and what they show. Main thread only; bounded by half a second.
class WindowList {
 public:
  virtual ~WindowList() = default;

  /// Front to back, a dictionary each: "kCGWindowOwnerName" and "kCGWindowName" (strings, where
  /// known) and "kCGWindowNumber" (integer). Every desktop lists one window for each screen's
  /// desktop picture, in the order of the screens, with the owner "Dock" and a name that begins
  /// with "Desktop Picture". None when the list cannot be had.
  [[nodiscard]] virtual std::optional<std::vector<Dictionary>> windowsOnScreen() const = 0;

  /// What that window shows, by itself, at the screen's own resolution. Null when it cannot be had.
  [[nodiscard]] virtual std::shared_ptr<const Capture> capture(std::uint32_t windowNumber) = 0;
};

/// The pictures behind everything, one a screen. Absent where the desktop offers no way to set
/// them. Main thread only; no operation takes longer than half a second.
class DesktopPictures {
 public:
  virtual ~DesktopPictures() = default;

  /// The absolute path of the picture that the screen shows. Where there is no file (a colour, a
  /// slide show), a path that stands for the present state. None for an unknown screen, or when the
  /// desktop does not answer.
  [[nodiscard]] virtual std::optional<std::string> path(const ScreenId& screen) = 0;

  /// How the picture is shown at this moment: scaling and whatever else a set may touch. To be
  /// handed to `set`; what is in it is the desktop's own affair.
  [[nodiscard]] virtual std::optional<Dictionary> options(const ScreenId& screen) = 0;

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
