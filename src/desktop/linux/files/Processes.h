#pragma once

#include <QByteArrayList>

namespace linux_desktop {

/// The program of a process and its arguments as it was started; empty where nobody may know.
[[nodiscard]] QByteArrayList commandLineOf(qint64 pid);

}  // namespace linux_desktop
