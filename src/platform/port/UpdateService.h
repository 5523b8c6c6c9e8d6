#pragma once

namespace platform::port {

/// Looks for newer versions of the program. Absent where nothing can be asked.
class UpdateService {
 public:
  virtual ~UpdateService() = default;
  /// Speaks only when there is a newer version. Returns at once.
  virtual void checkInBackground() = 0;
  /// Answers the user in any case. Returns at once.
  virtual void checkForUpdates() = 0;
};

}  // namespace platform::port
