#pragma once

#include <chrono>

namespace linux_desktop {

/// Makes a session bus that hangs into none, for this process and what it starts, so that nothing
/// waits for it: that is one line on standard error. Returns after `patience` at the latest, which
/// is a start's and not a click's: who is sent away too early has no bus until the next start. To
/// be called before the application object is made, which opens the bus.
void leaveOutHungSessionBus(std::chrono::milliseconds patience = std::chrono::seconds(2));

}  // namespace linux_desktop
