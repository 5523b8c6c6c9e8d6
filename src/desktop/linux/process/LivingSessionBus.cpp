#include "desktop/linux/process/LivingSessionBus.h"

#include <QtGlobal>

#include "desktop/linux/bus/BusProbe.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {

void leaveOutHungSessionBus(std::chrono::milliseconds patience) {
  if (!BusProbe::hangs(BusProbe::Bus::Session, patience)) return;
  qCWarning(lcProcess,
            "the session bus does not answer: no notifications can be silenced, and only trays of "
            "the old kind show the icon, until Calmdeck is started again");
  // No transport has this name, so every library gives up at once.
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
}

}  // namespace linux_desktop
