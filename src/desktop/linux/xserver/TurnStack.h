#pragma once

#include <QObject>
#include <optional>

#include "desktop/linux/xserver/WindowStack.h"

namespace linux_desktop {

/// The windows on the screen as one turn of the event loop sees them. A look takes a thousand
/// requests where there are many windows, and one toggle needs it for each monitor several times.
/// Main thread only.
class TurnStack {
 public:
  /// `server` outlives this.
  explicit TurnStack(XServer& server) : server_(server) {}
  TurnStack(const TurnStack&) = delete;
  TurnStack& operator=(const TurnStack&) = delete;

  /// Read at the first call of a turn, and forgotten at its end.
  [[nodiscard]] const WindowStack& now();

 private:
  XServer& server_;
  std::optional<WindowStack> stack_;
  QObject context_;
};

}  // namespace linux_desktop
