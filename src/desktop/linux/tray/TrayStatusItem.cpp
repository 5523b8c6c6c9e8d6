#include "desktop/linux/tray/TrayStatusItem.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QSystemTrayIcon>
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

/// Our icon in a tray of the old X11 protocol.
///
/// Made only while there is no StatusNotifierHost: QSystemTrayIcon looks for one once in the life
/// of the process, waits for its answer, and then stays with the protocol that it found.
class TrayStatusItem::XEmbedIcon final : public QSystemTrayIcon {
 public:
  XEmbedIcon(const StatusImage& image, std::function<void()> clicked,
             std::function<void()> menuAsked)
      : menuAsked_(std::move(menuAsked)) {
    setIcon(image.icon);
    connect(this, &QSystemTrayIcon::activated, this,
            [this, clicked = std::move(clicked)](ActivationReason reason) {
              // The second of two quick clicks comes as a double click only.
              if (reason == Trigger || reason == DoubleClick) clicked();
              if (reason == Context) menuAsked_();
            });
    qApp->installEventFilter(this);
    show();
  }

 private:
  /// Qt 6 drops the second of two quick clicks with the right button.
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::MouseButtonDblClick && watched->inherits("QSystemTrayIconSys") &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
      menuAsked_();
    }
    return false;
  }

  std::function<void()> menuAsked_;
};

TrayStatusItem::TrayStatusItem(TrayStatusBar& bar, platform::port::StatusItemClient& client)
    : bar_(bar),
      client_(client),
      image_(&bar.images().rendered(nullptr)),
      opening_(client, [this] { tellObserver(NSEventType::RightMouseUp); }),
      ownMenu_(opening_, bar.windows()),
      connection_(bar.hasBus() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                                               freshConnectionName())
                               : QDBusConnection(QString())) {
  if (!connection_.isConnected()) return;
  busMenu_.emplace(connection_, opening_);
  notifier_.emplace(
      connection_,
      StatusNotifierItem::Reports{
          .activated = [this](QPoint place) { activated(place); },
          .menuAsked = [this](QPoint place) { menuAsked(place); },
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
  if (xembed_) xembed_->setIcon(image_->icon);
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
  if (use == (xembed_ != nullptr)) return;
  xembed_.reset();
  if (!use) return;
  xembed_ = std::make_unique<XEmbedIcon>(
      *image_, [this] { activated({}); }, [this] { menuAsked({}); });
  xembed_->setToolTip(toolTip_);
}

void TrayStatusItem::tellObserver(NSEventType click) const {
  // A copy: the observer may put another in its place.
  if (const auto observer = observer_) observer(click);
}

void TrayStatusItem::remember(QPoint place, std::function<void()> then) {
  bar_.windows().findPointer([this, alive = QPointer(&context_), place,
                              then = std::move(then)](std::optional<QPoint> found) {
    if (!alive) return;
    bar_.rememberClick(found, place);
    then();
  });
}

QRect TrayStatusItem::geometry() const {
  return xembed_ ? xembed_->geometry() : QRect();
}

void TrayStatusItem::activated(QPoint place) {
  // xfce4-panel keeps the closing of a menu to itself. While one is open it takes the clicks.
  opening_.end();
  remember(place, [this] {
    tellObserver(NSEventType::LeftMouseUp);
    client_.statusItemClicked(NSEventType::LeftMouseUp);
  });
}

void TrayStatusItem::menuAsked(QPoint place) {
  remember(place, [this] { requestMenu({anchor().point, {}}); });
}

}  // namespace linux_desktop
