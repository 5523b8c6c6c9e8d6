#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "bench/ModeDesk.h"
#include "bench/MuteWatch.h"
#include "bench/PauseWatch.h"

namespace bench {

/// Sees the mode's effects as others see them: the sink, the notification daemon, windows, pixels.
class ModeEffects {
 public:
  /// The desk outlives this.
  explicit ModeEffects(ModeDesk& desk);

  /// When each effect was first seen to be as with the mode on, or off; by the effect's name.
  /// Looks at those that are still out every other millisecond. Throws std::runtime_error, naming
  /// them, when some do not come.
  using Seen = std::map<std::string, Clock::time_point>;
  [[nodiscard]] Seen await(bool on);
  /// The same for some of the effects.
  [[nodiscard]] Seen await(bool on, std::vector<std::string> wanted);

  static constexpr const char* kIcons = "icons";

 private:
  [[nodiscard]] bool areWindows(bool hidden);
  [[nodiscard]] bool isPicture(bool chosen);

  ModeDesk& desk_;
  MuteWatch sink_{"out1"};
  PauseWatch pause_;
  std::vector<std::uint32_t> ordinaryColours_;
  std::vector<xcb_window_t> pending_;  // windows that are not yet as wanted
  std::map<std::string, std::function<bool(bool on)>> effects_;
};

}  // namespace bench
