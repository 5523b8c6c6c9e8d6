#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace linux_desktop {

/// Shows the user short texts as notifications. Main thread only; nothing here waits.
class Notifier {
 public:
  virtual ~Notifier() = default;

  /// Asks for the text to be shown, in the place of the one before where that is still there. Why
  /// not, as a sentence, where it is known at once that nobody will show it.
  [[nodiscard]] virtual std::optional<std::string> show(std::string_view text) = 0;
};

}  // namespace linux_desktop
