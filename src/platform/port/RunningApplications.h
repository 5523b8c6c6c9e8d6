#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// How an application shows itself, with the platform's numbers.
enum class NSApplicationActivationPolicy { Regular = 0, Accessory = 1, Prohibited = 2 };

}  // namespace platform

namespace platform::port {

/// Names a running application for as long as it runs; never used again in this process.
using ApplicationId = std::uint64_t;

struct ApplicationInfo {
  ApplicationId id = 0;
  /// The name that the user knows it by; none where it tells none.
  std::optional<std::string> localizedName;
  NSApplicationActivationPolicy activationPolicy = NSApplicationActivationPolicy::Regular;
};

/// The applications that run, ourselves included, and hiding them. Absent where the desktop lets no
/// program do that. Main thread only.
///
/// Hiding takes all of an application's windows on all spaces off the screen, and showing brings
/// back what hiding took away, in its old order, leaving the active window and the space as they
/// are; where the user works in no window by then, the one from before is active again. A window
/// that the user had minimised before stays so: minimised is not hidden. An application is hidden
/// when it was hidden, by this process or an earlier one, and not brought forward since.
///
/// Requests take effect soon after; those of one turn of the loop take effect together. Reads are
/// answered from memory and know of the requests made so far.
class RunningApplications {
 public:
  virtual ~RunningApplications() = default;

  /// Whether those who would do it now can hide any at all.
  [[nodiscard]] virtual bool canHide() { return true; }
  [[nodiscard]] virtual std::vector<ApplicationInfo> runningApplications() = 0;
  [[nodiscard]] virtual bool isHidden(ApplicationId application) = 0;
  /// False when there is no such application any more, or it cannot be hidden or shown.
  virtual bool hide(ApplicationId application) = 0;
  virtual bool unhide(ApplicationId application) = 0;
};

}  // namespace platform::port
