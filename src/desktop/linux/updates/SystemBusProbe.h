#pragma once

#include <functional>
#include <memory>

namespace linux_desktop {

/// Finds out whether the system bus answers. Opening a bus with Qt stops the whole program until
/// the bus has said who we are, so one that hangs must not be opened. Needs Qt's dispatcher to be
/// the one of GLib, as it is by default. Main thread only.
class SystemBusProbe {
 public:
  /// Returns at once. `heard` is told once, later: true when the bus has answered, false when there
  /// is none. Never while the bus hangs, and never once this is destroyed.
  explicit SystemBusProbe(std::function<void(bool answers)> heard);
  ~SystemBusProbe();
  SystemBusProbe(const SystemBusProbe&) = delete;
  SystemBusProbe& operator=(const SystemBusProbe&) = delete;

 private:
  struct Attempt;
  std::shared_ptr<Attempt> attempt_;
};

}  // namespace linux_desktop
