#pragma once

#include <QByteArrayList>
#include <QString>

namespace linux_desktop {

/// The program of a process and its arguments as it was started; empty where nobody may know.
[[nodiscard]] QByteArrayList commandLineOf(qint64 pid);

/// The profile under which a file manager of the pcmanfm family keeps its settings: the one that
/// its command line names, else "default".
[[nodiscard]] QString profileIn(const QByteArrayList& commandLine);

}  // namespace linux_desktop
