#include "desktop/linux/tray/TrayStatusItem.h"

#include <utility>

#include "desktop/linux/tray/TrayStatusBar.h"

namespace linux_desktop {
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
      opening_(client),
      ownMenu_(opening_),
      connection_(bar.hasBus() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                                               freshConnectionName())
                               : QDBusConnection(QString())) {
  if (!connection_.isConnected()) return;
  busMenu_.emplace(connection_, opening_);
  notifier_.emplace(
      connection_,
      StatusNotifierItem::Reports{.activated = [this] { activated(); },
                                  .menuAsked = [this] { menuAsked(); },
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
}

void TrayStatusItem::openMenu(const platform::NSMenu& menu) {
  const MenuEntries entries = entriesOf(menu);
  if (busMenu_) busMenu_->setEntries(entries);
  const bool draw = drawsMenu_ || !opening_.inProgress();
  drawsMenu_ = false;
  opening_.attach();
  const QPoint place =
      std::exchange(menuPlace_, std::nullopt).value_or(bar_.anchor().anchorPoint());
  if (draw) ownMenu_.popUp(entries, place);
}

bool TrayStatusItem::isShown() const {
  return bar_.hasTray();
}

Anchor TrayStatusItem::anchor() const {
  return bar_.anchor().anchor();
}

void TrayStatusItem::menuRequested(QPoint at) {
  menuPlace_ = at;
  drawsMenu_ = true;
  opening_.begin(MenuOpening::Sign::Asked);
}

void TrayStatusItem::tellObserver() const {
  if (activationObserver_) activationObserver_();
}

void TrayStatusItem::registerWith(const QString& watcher) {
  if (notifier_) notifier_->registerWith(watcher);
}

void TrayStatusItem::useXEmbed(bool use) {
  if (use == xembed_.has_value()) return;
  if (use)
    xembed_.emplace(*image_, XEmbedIcon::Reports{.activated = [this] { activated(); },
                                                 .menuAsked = [this] { menuAsked(); }});
  else
    xembed_.reset();
}

QRect TrayStatusItem::geometry() const {
  return xembed_ ? xembed_->geometry() : QRect();
}

void TrayStatusItem::activated() {
  bar_.rememberPointer();
  tellObserver();
  opening_
      .end();  // xfce4-panel keeps the closing to itself; a menu that is still open takes clicks
  client_.statusItemClicked(platform::NSEventType::LeftMouseUp);
}

void TrayStatusItem::menuAsked() {
  bar_.rememberPointer();
  tellObserver();
  drawsMenu_ = true;
  opening_.begin(MenuOpening::Sign::Asked);
}

}  // namespace linux_desktop
