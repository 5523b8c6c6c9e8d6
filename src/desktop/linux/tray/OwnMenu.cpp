#include "desktop/linux/tray/OwnMenu.h"

namespace linux_desktop {

OwnMenu::OwnMenu(MenuOpening& opening) : opening_(opening) {
  // A menu hides before it tells what was chosen; the closing is to come after the choice.
  QObject::connect(
      &menu_, &QMenu::aboutToHide, &menu_,
      [this] {
        if (!menu_.isVisible()) opening_.end();
      },
      Qt::QueuedConnection);
}

void OwnMenu::popUp(const MenuEntries& entries, const QPoint& at) {
  menu_.clear();
  for (std::size_t index = 0; index < entries.size(); ++index) {
    QAction* action = menu_.addAction(QString(entries[index].title).replace('&', "&&"));
    action->setEnabled(entries[index].enabled);
    QObject::connect(action, &QAction::triggered, &menu_,
                     [this, index] { opening_.choose(index); });
  }
  menu_.popup(at);
}

}  // namespace linux_desktop
