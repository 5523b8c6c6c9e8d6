#pragma once

#include <QLoggingCategory>

namespace linux_desktop {

/// Category "calmdeck.audio": one warning an incident; what changes in ordinary life is on the
/// level info, which is quiet until asked for.
Q_DECLARE_LOGGING_CATEGORY(audioLog)

}  // namespace linux_desktop
