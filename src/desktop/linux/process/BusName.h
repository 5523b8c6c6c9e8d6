#pragma once

#include <QDBusConnection>
#include <QString>

namespace linux_desktop {

/// Asks for the program's name on a session bus, so that desktop services can find it there.
/// Nothing depends on the answer: no bus, a bus that hangs and a name that is taken are each a
/// debug line. Never waits. The name is held until the connection closes.
void requestBusName(const QDBusConnection& bus,
                    const QString& name = QStringLiteral("org.calmdeck.Calmdeck"));

}  // namespace linux_desktop
