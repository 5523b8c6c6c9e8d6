#pragma once

#include <QString>
#include <string>

namespace linux_desktop {

/// A title for one of Qt's buttons, none of whose letters becomes a shortcut.
[[nodiscard]] inline QString plainTitle(const std::string& title) {
  return QString::fromStdString(title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

}  // namespace linux_desktop
