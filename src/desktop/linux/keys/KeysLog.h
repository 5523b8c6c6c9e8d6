#pragma once

#include <QLoggingCategory>

namespace linux_desktop {

/// "calmdeck.keys": hot keys and the keyboard.
Q_DECLARE_LOGGING_CATEGORY(lcKeys)

}  // namespace linux_desktop
