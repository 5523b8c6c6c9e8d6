#include "desktop/linux/tray/TrayStatusItem.h"

#include <QPointer>
#include <utility>

#include "desktop/linux/tray/TrayStatusBar.h"

namespace linux_desktop {

using platform::NSEventType;

namespace {

QString freshConnectionName() {
  static int number = 0;
  return QStringLiteral("calmdeck-status-item-%1").arg(++number);
}

}  // namespace

TrayStatusItem::TrayStatusItem(TrayStatusBar& bar, platform::port::StatusItemClient& client)
    : bar_(bar),
      client_(client),
      image_(&bar.images().rendered(nullptr)),
      opening_(client, [this] { tellObserver(NSEventType::RightMouseUp); }),
      ownMenu_(opening_),
      connection_(bar.hasBus() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                                               freshConnectionName())
                               : QDBusConnection(QString())) {
  if (!connection_.isConnected()) return;
  busMenu_.emplace(connection_, opening_);
  notifier_.emplace(
      connection_,
      StatusNotifierItem::Reports{
          .activated = [this](const auto& click) { activated(click); },
          .menuAsked = [this](const auto& click) { menuAsked(click); },
          .tokenGiven = [this](const QString& token) { bar_.windows().setToken(token); },
          .called = [this](const QString& host) { bar_.shownBy(host); }});
  notifier_->setImage(*image_);
}

TrayStatusItem::~TrayStatusItem() {
  bar_.forget(*this);
  notifier_.reset();
  busMenu_.reset();
  if (!connection_.name().isEmpty()) QDBusConnection::disconnectFromBus(connection_.name());
}

void TrayStatusItem::setImage(const platform::NSImage* image) {
  image_ = &bar_.images().rendered(image);
  if (notifier_) notifier_->setImage(*image_);
  if (xembed_) xembed_->setImage(*image_);
  if (button_ != nullptr) button_->show(connection_.baseService(), image_->icon);
}

void TrayStatusItem::setToolTip(const std::string& text) {
  toolTip_ = QString::fromStdString(text);
  if (notifier_) notifier_->setToolTip(toolTip_);
  if (xembed_) xembed_->setToolTip(toolTip_);
}

void TrayStatusItem::openMenu(const platform::NSMenu& menu) {
  const QStringList titles = titlesOf(menu);
  if (busMenu_) busMenu_->setTitles(titles);
  std::optional<MenuPlace> place = std::exchange(menuPlace_, std::nullopt);
  // When no panel waits for the menu either, the application opens it by itself.
  if (!place && !opening_.inProgress()) place = MenuPlace{anchor().point, {}};
  opening_.attach();
  if (place) ownMenu_.popUp(titles, *place);
}

bool TrayStatusItem::isShown() const {
  return bar_.hasTray();
}

bool TrayStatusItem::isComing() const {
  return bar_.isComing();
}

Anchor TrayStatusItem::anchor() const {
  return bar_.anchor().anchor();
}

void TrayStatusItem::menuRequested(QWidget& button) {
  requestMenu({button.mapToGlobal(QPoint(0, button.height())), &button});
}

void TrayStatusItem::requestMenu(const MenuPlace& place) {
  menuPlace_ = place;
  opening_.begin(MenuOpening::Sign::Asked);
}

void TrayStatusItem::registerWith(const QString& watcher) {
  if (notifier_) notifier_->registerWith(watcher);
}

void TrayStatusItem::useButton(PanelButton* button) {
  if (button == button_ || !notifier_) return;
  button_ = button;
  notifier_->setWanted(button_ == nullptr);
  if (button_ != nullptr) button_->show(connection_.baseService(), image_->icon);
}

void TrayStatusItem::useXEmbed(bool use) {
  if (use == xembed_.has_value()) return;
  if (use) {
    xembed_.emplace(*image_, XEmbedIcon::Reports{.activated = [this] { activated({}); },
                                                 .menuAsked = [this] { menuAsked({}); }});
    xembed_->setToolTip(toolTip_);
  } else {
    xembed_.reset();
  }
}

void TrayStatusItem::tellObserver(NSEventType click) const {
  // A copy: the observer may put another in its place.
  if (const auto observer = observer_) observer(click);
}

void TrayStatusItem::remember(const StatusNotifierItem::Click& click, std::function<void()> then) {
  bar_.windows().findPointer([this, alive = QPointer(&context_), told = click.place,
                              then = std::move(then)](std::optional<QPoint> found) {
    if (!alive) return;
    bar_.rememberClick(found.value_or(told));
    then();
  });
}

QRect TrayStatusItem::geometry() const {
  return xembed_ ? xembed_->geometry() : QRect();
}

void TrayStatusItem::activated(const StatusNotifierItem::Click& click) {
  // xfce4-panel keeps the closing of a menu to itself. While one is open it takes the clicks.
  opening_.end();
  remember(click, [this] {
    tellObserver(NSEventType::LeftMouseUp);
    client_.statusItemClicked(NSEventType::LeftMouseUp);
  });
}

void TrayStatusItem::menuAsked(const StatusNotifierItem::Click& click) {
  remember(click, [this] { requestMenu({anchor().point, {}}); });
}

}  // namespace linux_desktop
