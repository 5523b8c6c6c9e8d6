#pragma once

#include <QMenu>
#include <QPoint>
#include <memory>

#include "desktop/linux/tray/MenuEntry.h"
#include "desktop/linux/tray/MenuOpening.h"

namespace linux_desktop {

/// The menu drawn by ourselves, for trays that draw none.
class OwnMenu {
 public:
  /// `opening` outlives the menu.
  explicit OwnMenu(MenuOpening& opening);

  void popUp(const MenuEntries& entries, const QPoint& at);
  void close() { menu_.close(); }

 private:
  MenuOpening& opening_;
  QMenu menu_;
};

}  // namespace linux_desktop
