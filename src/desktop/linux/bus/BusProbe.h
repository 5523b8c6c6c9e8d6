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

  /// Waits for the answer: true when there is a bus that has given none after `patience`. Needs no
  /// application object.
  [[nodiscard]] static bool hangs(Bus bus, std::chrono::milliseconds patience);

 private:
  struct Attempt;
  std::shared_ptr<Attempt> attempt_;
};

}  // namespace linux_desktop
