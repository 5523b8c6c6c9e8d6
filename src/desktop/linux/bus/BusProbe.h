#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace linux_desktop {

/// Finds out whether a bus answers. Opening one with Qt stops the whole program until the bus has
/// said who we are, so one that hangs must not be opened. Main thread only.
class BusProbe {
 public:
  enum class Bus : std::uint8_t { Session, System };

  /// Returns at once. `heard` is told once, later: true when the bus has answered, false when there
  /// is none. Never while the bus hangs, and never once this is destroyed. Needs Qt's dispatcher to
  /// be the one of GLib, as it is by default.
  BusProbe(Bus bus, std::function<void(bool answers)> heard);
  ~BusProbe();
  BusProbe(const BusProbe&) = delete;
  BusProbe& operator=(const BusProbe&) = delete;

 private:
  struct Attempt;
  std::shared_ptr<Attempt> attempt_;
};

/// Makes a session bus that hangs into none, for this process and what it starts, so that nothing
/// waits for it: that is one line on standard error. Returns after `patience` at the latest, which
/// is a start's and not a click's: who is sent away too early has no bus until the next start. To
/// be called before the application object is made, which opens the bus.
void leaveOutHungSessionBus(std::chrono::milliseconds patience = std::chrono::seconds(2));

}  // namespace linux_desktop
