#pragma once

#include <QMenu>
#include <QObject>
#include <QPoint>
#include <QPointer>

#include "desktop/linux/tray/MenuEntry.h"
#include "desktop/linux/tray/MenuOpening.h"

namespace linux_desktop {

/// Where a menu of ours comes up.
struct MenuPlace {
  /// In Qt's coordinates of the whole desktop.
  QPoint at;
  /// The control that it drops down from and belongs to; null where there is none of ours.
  QPointer<QWidget> owner;
};

/// The menu drawn by ourselves, for trays that draw none and for windows that stand in for a tray.
class OwnMenu {
 public:
  /// `opening` outlives the menu.
  explicit OwnMenu(MenuOpening& opening) : opening_(opening) {}
  ~OwnMenu();
  OwnMenu(const OwnMenu&) = delete;
  OwnMenu& operator=(const OwnMenu&) = delete;

  void popUp(const MenuEntries& entries, const MenuPlace& place);

 private:
  MenuOpening& opening_;
  QPointer<QMenu> menu_;  // goes when it closes, or with its owner
  unsigned popUps_ = 0;   // so far
  QObject context_;       // cancels what is connected to this
};

}  // namespace linux_desktop
