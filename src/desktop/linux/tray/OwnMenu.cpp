#include "desktop/linux/tray/OwnMenu.h"

#include <memory>

namespace linux_desktop {

OwnMenu::~OwnMenu() {
  const std::unique_ptr<QMenu> last(menu_);
  if (last) last->disconnect(&context_);
}

void OwnMenu::popUp(const MenuEntries& entries, const MenuPlace& place) {
  if (menu_) menu_->close();
  menu_ = std::make_unique<QMenu>(place.owner).release();
  menu_->setAttribute(Qt::WA_DeleteOnClose);
  for (std::size_t index = 0; index < entries.size(); ++index) {
    QAction* action = menu_->addAction(QString(entries[index].title).replace('&', "&&"));
    action->setEnabled(entries[index].enabled);
    QObject::connect(action, &QAction::triggered, &context_,
                     [this, index] { opening_.choose(index); });
  }
  // A menu hides before it tells what was chosen; the closing is to come after the choice.
  QObject::connect(menu_, &QObject::destroyed, &context_, [this, number = ++popUps_] {
    // One that another has taken the place of ends nothing.
    if (number == popUps_) opening_.end();
  });
  menu_->popup(place.at);
}

}  // namespace linux_desktop
