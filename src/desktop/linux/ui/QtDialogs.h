#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/linux/ui/QtWindowPeer.h"
#include "platform/appkit/NSAlert.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

// Dialogs on the screen, until what is returned is destroyed; `answered` may do that. `services`
// outlive them.

/// An alert in a message box. `sheetOf` waits for the answer; null: all windows of the application
/// do.
[[nodiscard]] std::unique_ptr<platform::port::Windows::ModalPeer> makeAlert(
    const platform::NSAlert& alert, const std::function<void(std::size_t button)>& answered,
    QtWindowPeer* sheetOf, WindowServices& services);

/// An open panel as the desktop's own dialog for files, or Qt's where there is none. The titled
/// window that was shown last waits for it; where there is none, all windows of the application do.
/// It begins in the user's folder of pictures, offers files of the panel's types alone, and any
/// other that somebody types the name of counts as no answer.
[[nodiscard]] std::unique_ptr<platform::port::Windows::ModalPeer> makeOpenPanel(
    const platform::NSOpenPanel& panel,
    const std::function<void(std::optional<std::string> path)>& answered, WindowServices& services);

}  // namespace linux_desktop
