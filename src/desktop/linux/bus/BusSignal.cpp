#include "desktop/linux/bus/BusSignal.h"

#include <utility>

namespace linux_desktop {

BusSignal::BusSignal(QDBusConnection bus, const Source& source,
                     std::function<void(const QDBusMessage& signal)> heard)
    : heard_(std::move(heard)) {
  bus.connect(source.service, source.path, source.interface, source.name, source.begins, {}, this,
              SLOT(tell(QDBusMessage)));
}

void BusSignal::tell(const QDBusMessage& signal) {
  const auto heard = heard_;
  heard(signal);
}

}  // namespace linux_desktop
