#pragma once

#include <vector>

#include "desktop/linux/ui/LayerWidget.h"
#include "desktop/linux/windowsystem/KeyTranslator.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

class QtWindowPeer;

/// What the windows of one QtWindows share.
struct WindowServices {
  Clock clock;
  OwnWindows& ownWindows;
  /// Null where nobody can say what a key is to the platform: then none is reported.
  KeyTranslator* keys = nullptr;
  /// How many dialogs that all windows wait for are on the screen.
  int alerts = 0;
  /// The peers that are on the screen, the one shown last at the end.
  std::vector<QtWindowPeer*> shown;
};

}  // namespace linux_desktop
