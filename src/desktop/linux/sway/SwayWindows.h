#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <cstdint>
#include <functional>
#include <set>
#include <vector>

#include "desktop/linux/sway/SwaySocket.h"
#include "desktop/linux/windowsystem/OtherApplications.h"

namespace linux_desktop {

/// Sway's number for a window or a group of windows.
using SwayId = std::int64_t;

struct SwayTree;

/// Hides on sway and i3 by turning every monitor to an empty workspace: nothing in the workspaces
/// that were shown changes, neither layout nor focus. The empty one of "1" is called "calmdeck 1",
/// which is how a later process knows where to go back to.
class SwayWindows final : public WindowHider {
 public:
  /// `sway` outlives this.
  explicit SwayWindows(SwaySocket& sway);

  [[nodiscard]] bool isHiding() override { return !empties_.empty(); }
  void hide(Done done) override;
  void show(Done done) override;

 private:
  void carryOut(const std::function<QByteArrayList(const SwayTree& tree)>& plan, const Done& done);
  [[nodiscard]] QByteArray withoutWarping(const QByteArrayList& commands);
  void workspaceChanged(const QJsonObject& event);

  SwaySocket& sway_;
  /// The workspaces with such a name.
  std::set<SwayId> empties_;
  /// When this process hid the last time; 0: none.
  SwayId focusedBefore_ = 0;
};

}  // namespace linux_desktop
