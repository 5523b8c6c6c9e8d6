#pragma once

#include <array>
#include <cstddef>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// The names that windows and window managers talk in. Those from DesktopType on are window types,
/// up to the last.
enum class ClientAtom : std::size_t {
  Supported,
  SupportingWmCheck,
  WmName,
  ClientList,
  ClientListStacking,
  ActiveWindow,
  CurrentDesktop,
  RestackWindow,
  RequestFrameExtents,
  FrameExtents,
  ActionMinimize,
  ChangeState,
  State,
  StateHidden,
  StateSkipTaskbar,
  Desktop,
  Pid,
  ClientLeader,
  ClientMachine,
  GtkApplicationId,
  HiddenMark,
  HiddenOrder,
  HiddenActive,
  WindowType,
  DesktopType,
  DockType,
  NotificationType,
  SplashType,
  NormalType,
  DialogType,
  Count
};

/// Their numbers at one server, asked for in one round trip.
class ClientAtoms {
 public:
  explicit ClientAtoms(XServer& server);

  [[nodiscard]] xcb_atom_t operator[](ClientAtom name) const {
    return atoms_[static_cast<std::size_t>(name)];
  }

 private:
  std::array<xcb_atom_t, static_cast<std::size_t>(ClientAtom::Count)> atoms_{};
};

}  // namespace linux_desktop
