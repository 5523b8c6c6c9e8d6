#pragma once

#include <QDBusConnection>
#include <QString>
#include <chrono>

namespace linux_desktop {

/// Makes a session bus that hangs into none, for this process and what it starts, so that nothing
/// waits for it: that is one line on standard error. Returns after `patience` at the latest, which
/// is a start's and not a click's: who is sent away too early has no bus until the next start. To
/// be called before the application object is made, which opens the bus.
void leaveOutHungSessionBus(std::chrono::milliseconds patience = std::chrono::seconds(2));

/// Asks for the program's name on a session bus, so that desktop services can find it there.
/// Nothing depends on the answer: no bus, a bus that hangs and a name that is taken are each a
/// debug line. Never waits. The name is held until the connection closes.
void requestBusName(const QDBusConnection& bus,
                    const QString& name = QStringLiteral("org.calmdeck.Calmdeck"));

}  // namespace linux_desktop
