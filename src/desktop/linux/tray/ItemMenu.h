#pragma once

#include <QMenu>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QStringList>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace platform {
class NSMenu;
}

namespace platform::port {
class StatusItemClient;
}

namespace linux_desktop {

/// What a panel draws of the menu: a copy, since the menu itself may change or go.
[[nodiscard]] QStringList titlesOf(const platform::NSMenu& menu);

/// Turns the signs that a panel gives while it shows our menu into one request, one closing and at
/// most one choice for each time that the menu opens.
///
/// No panel gives every sign and none gives only one. The client attaches its menu (`attach`)
/// inside the report of the request, or later when it is busy; what the panel tells before that is
/// held back until then.
class MenuOpening {
 public:
  /// What tells that a menu is wanted. A panel gives each at most once an opening.
  enum class Sign : std::uint8_t { AboutToShow, AboutToShowGroup, Opened, Asked };

  /// `requested` is called before each report of a request.
  explicit MenuOpening(platform::port::StatusItemClient& client,
                       std::function<void()> requested = {});

  void begin(Sign sign);
  /// The client has put its menu in place.
  void attach();
  /// The user chose an item: ends the opening too.
  void choose(std::size_t index);
  /// The menu is gone. Does nothing when none is open.
  void end();
  /// The menu is gone, but what was chosen of it may still follow: several panels tell it last.
  void endUnlessChosen();

  /// A panel (or the user) wants a menu that has not ended yet.
  [[nodiscard]] bool inProgress() const { return !signs_.empty(); }

 private:
  void reportEnd(std::optional<std::size_t> chosen);
  void reportEndLater(std::optional<std::size_t> chosen);

  platform::port::StatusItemClient& client_;
  std::function<void()> requested_;
  std::set<Sign> signs_;     // given so far for the opening in progress
  bool reporting_ = false;   // inside the report of a request
  int unanswered_ = 0;       // requests that the client has not attached a menu for
  bool attached_ = false;    // to the opening in progress
  bool endedEarly_ = false;  // before the client attached its menu
  std::optional<std::size_t> chosenEarly_;
  OneShot choiceWindow_;  // runs between the panel's closing and our report of it
  QObject later_;         // cancels what is reported later
};

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
  /// Both outlive the menu.
  OwnMenu(MenuOpening& opening, OwnWindows& windows) : opening_(opening), windows_(windows) {}
  ~OwnMenu();

  void popUp(const QStringList& titles, const MenuPlace& place);

 private:
  void putAt(QPoint place);

  MenuOpening& opening_;
  OwnWindows& windows_;
  QPointer<QMenu> menu_;  // goes when it closes, or with its owner
  unsigned popUps_ = 0;   // so far
  std::unique_ptr<OwnWindows::Popover> popover_;
  std::unique_ptr<OwnWindows::PressWatch> presses_;
  QObject context_;  // cancels what is connected to this
};

}  // namespace linux_desktop
