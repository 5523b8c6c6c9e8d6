#include "desktop/linux/tray/ItemMenu.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/appkit/NSStatusItem.h"
#include "platform/port/Windows.h"

namespace linux_desktop {
namespace {

using namespace std::chrono_literals;

/// The choice is the panel's next message; this is for a busy machine.
constexpr auto kChoiceWindow = 100ms;

}  // namespace

QStringList titlesOf(const platform::NSMenu& menu) {
  QStringList titles;
  for (const auto& item : menu.itemArray()) titles.append(QString::fromStdString(item->title()));
  return titles;
}

MenuOpening::MenuOpening(platform::port::StatusItemClient& client, std::function<void()> requested)
    : client_(client),
      requested_(std::move(requested)),
      choiceWindow_(kChoiceWindow, [this] { end(); }) {}

void MenuOpening::begin(Sign sign) {
  if (inProgress() && !choiceWindow_.isActive() && signs_.insert(sign).second) return;
  end();  // a sign for the second time: the panel kept the closing to itself
  signs_ = {sign};
  endedEarly_ = false;
  chosenEarly_.reset();
  ++unanswered_;
  reporting_ = true;
  if (requested_) requested_();
  client_.statusItemClicked(platform::NSEventType::RightMouseUp);
  reporting_ = false;
}

void MenuOpening::attach() {
  // A client that answers at once is not busy, so it will not answer older requests any more.
  if (reporting_) unanswered_ = 1;
  if (unanswered_ > 0) --unanswered_;
  if (unanswered_ > 0 || endedEarly_) {
    endedEarly_ = endedEarly_ && unanswered_ > 0;
    reportEndLater(std::exchange(chosenEarly_, std::nullopt));
  } else {
    attached_ = true;
  }
}

void MenuOpening::choose(std::size_t index) {
  if (!inProgress()) return;
  if (attached_) {
    choiceWindow_.stop();
    signs_.clear();
    attached_ = false;
    reportEnd(index);
  } else {
    chosenEarly_ = index;
    end();
  }
}

void MenuOpening::end() {
  if (!inProgress()) return;
  choiceWindow_.stop();
  signs_.clear();
  endedEarly_ = !attached_;
  if (std::exchange(attached_, false)) reportEnd(std::nullopt);
}

void MenuOpening::endUnlessChosen() {
  if (inProgress()) choiceWindow_.start();
}

void MenuOpening::reportEnd(std::optional<std::size_t> chosen) {
  if (chosen) client_.menuItemChosen(*chosen);
  client_.menuDidClose();
}

void MenuOpening::reportEndLater(std::optional<std::size_t> chosen) {
  QTimer::singleShot(0, &later_, [this, chosen] { reportEnd(chosen); });
}

OwnMenu::~OwnMenu() {
  const std::unique_ptr<QMenu> last(menu_);
  if (last) last->disconnect(&context_);
}

void OwnMenu::popUp(const QStringList& titles, const MenuPlace& place) {
  if (menu_) menu_->close();
  menu_ = new QMenu(place.owner);
  menu_->setAttribute(Qt::WA_DeleteOnClose);
  std::size_t index = 0;
  for (QString title : titles) {
    const QAction* action = menu_->addAction(title.replace('&', "&&"));
    QObject::connect(action, &QAction::triggered, &context_,
                     [this, chosen = index++] { opening_.choose(chosen); });
  }
  // A menu hides before it tells what was chosen; the closing is to come after the choice.
  QObject::connect(menu_, &QObject::destroyed, &context_, [this, number = ++popUps_] {
    // One that another has taken the place of ends nothing.
    if (number != popUps_) return;
    presses_.reset();
    popover_.reset();
    opening_.end();
  });
  if (!place.owner) putAt(place.at);
  menu_->popup(place.at);
}

// Qt alone can do so only for the menu of a window, where the window system places windows itself.
void OwnMenu::putAt(QPoint place) {
  menu_->winId();
  QWindow& window = *menu_->windowHandle();
  QRect area(place, menu_->sizeHint());
  if (const QScreen* screen = QGuiApplication::screenAt(place)) {
    const QRect room = screen->geometry();
    area.moveTopLeft({std::min(area.x(), room.right() + 1 - area.width()),
                      std::min(area.y(), room.bottom() + 1 - area.height())});
  }
  const auto close = [this] {
    if (menu_) QMetaObject::invokeMethod(menu_, &QWidget::close, Qt::QueuedConnection);
  };
  presses_.reset();
  popover_ = windows_.makePopover(window, area, close);
  if (popover_) presses_ = windows_.watchPresses(window, [close](const auto&) { close(); });
}

}  // namespace linux_desktop
