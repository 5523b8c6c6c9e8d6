#pragma once

#include <QWindow>
#include <functional>

namespace linux_desktop {

/// Calls `exposed` once `window` is on the screen: now if it is. Never if the window goes before.
void onceExposed(QWindow& window, std::function<void()> exposed);

}  // namespace linux_desktop
