#pragma once

#include <QCursor>

#include "desktop/linux/windowsystem/OwnWindows.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// What Qt does not tell window managers about our windows. It speaks over Qt's own connection, so
/// that it arrives in the order in which Qt maps and unmaps, and asks over ours.
class XOwnWindows final : public OwnWindows {
 public:
  /// `events` outlives this.
  explicit XOwnWindows(XEvents& events) : events_(events), server_(events.server()) {}

  void keepOutOfTaskLists(QWindow& window) override;
  void markAsAskedFor(QWindow& window) override;
  [[nodiscard]] bool isKept(QWindow& window) override;
  void activate(QWindow& window) override;
  [[nodiscard]] bool mayBeRound() override { return server_.isComposited(); }
  [[nodiscard]] std::vector<DesktopPanel> panels() override;
  [[nodiscard]] std::optional<PanelPart> partDrawnBy(std::uint32_t pid) override;
  void findPointer(const PointerFound& found) override { found(QCursor::pos()); }
  [[nodiscard]] std::unique_ptr<PressWatch> watchPresses(QWindow& window,
                                                         const Pressed& pressed) override;

 private:
  XEvents& events_;
  XServer& server_;
};

}  // namespace linux_desktop
