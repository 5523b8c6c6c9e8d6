#pragma once

#include <QLoggingCategory>

namespace linux_desktop {

Q_DECLARE_LOGGING_CATEGORY(lcUpdates)

}  // namespace linux_desktop
