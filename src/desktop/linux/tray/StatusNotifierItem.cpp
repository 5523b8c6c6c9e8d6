#include "desktop/linux/tray/StatusNotifierItem.h"

#include <QDBusObjectPath>
#include <tuple>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/tray/DBusMenu.h"

namespace linux_desktop {

/// Signature (sa(iiay)ss).
struct ToolTip {
  QString iconName;
  IconPixmaps icon;
  QString title;
  QString text;

  static constexpr std::tuple kFields{&ToolTip::iconName, &ToolTip::icon, &ToolTip::title,
                                      &ToolTip::text};
};

namespace {

BusInterface::Property constant(const char* type, const QVariant& value) {
  return {type, [value] { return value; }};
}

BusInterface::Property text(const char* value) {
  return constant("s", value);
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(const QDBusConnection& connection, Reports reports)
    : connection_(connection),
      reports_(std::move(reports)),
      object_(connection, kPath, {makeInterface()}, reports_.called) {}

BusInterface StatusNotifierItem::makeInterface() {
  registerBusTypes<IconPixmap, IconPixmaps, ToolTip>();
  const auto reporting = [this](const Clicked& what) {
    return [this, &what](const QDBusMessage& call) {
      report(what, call);
      return QVariantList();
    };
  };
  const auto tellToken = [this](const QDBusMessage& call) {
    reports_.tokenGiven(call.arguments().value(0).toString());
    return QVariantList();
  };
  const auto ignore = [](const QDBusMessage&) { return QVariantList(); };
  const auto icon = [this] {
    return QVariant::fromValue(image_ == nullptr ? IconPixmaps() : image_->pixmaps);
  };
  const auto none = constant("a(iiay)", QVariant::fromValue(IconPixmaps()));
  const auto name = [this] { return image_ == nullptr ? QString() : image_->name; };
  // Hosts say the title of the item to assistive technology, or the picture's description.
  const auto title = [this] { return QVariant(toolTip_); };
  // Not every host shows the text below the title.
  const auto toolTip = [this] { return QVariant::fromValue(ToolTip{{}, {}, toolTip_, {}}); };
  const QDBusObjectPath menu(DBusMenu::kPath);
  return {.name = "org.kde.StatusNotifierItem",
          .methods = {{"Activate", {{"i", "i"}, {}, reporting(reports_.activated)}},
                      {"ContextMenu", {{"i", "i"}, {}, reporting(reports_.menuAsked)}},
                      // The middle button: GNOME's tray opens the menu with a first click of the
                      // other one.
                      {"SecondaryActivate", {{"i", "i"}, {}, reporting(reports_.activated)}},
                      {"Scroll", {{"i", "s"}, {}, ignore}},
                      {"ProvideXdgActivationToken", {{"s"}, {}, tellToken}}},
          .properties = {{"Category", text("ApplicationStatus")},
                         {"Id", text("calmdeck")},
                         {"Title", {"s", title}},
                         {"Status", {"s", [this] { return QVariant(status()); }}},
                         {"WindowId", constant("i", 0)},
                         {"IconThemePath", text("")},
                         {"Menu", constant("o", QVariant::fromValue(menu))},
                         {"ItemIsMenu", constant("b", false)},
                         {"IconName", {"s", name}},
                         {"IconPixmap", {"a(iiay)", icon}},
                         {"OverlayIconName", text("")},
                         {"OverlayIconPixmap", none},
                         {"AttentionIconName", text("")},
                         {"AttentionIconPixmap", none},
                         {"AttentionMovieName", text("")},
                         {"IconAccessibleDesc", {"s", title}},
                         {"ToolTip", {"(sa(iiay)ss)", toolTip}}},
          .emitted = {{"NewIcon", {}}, {"NewToolTip", {}}, {"NewTitle", {}}, {"NewStatus", {"s"}}}};
}

QString StatusNotifierItem::status() const {
  return wanted_ ? QStringLiteral("Active") : QStringLiteral("Passive");
}

void StatusNotifierItem::setWanted(bool wanted) {
  if (std::exchange(wanted_, wanted) != wanted) object_.emitSignal("NewStatus", {status()});
}

void StatusNotifierItem::report(const Clicked& what, const QDBusMessage& call) {
  const QVariantList values = call.arguments();
  const QPoint place(values.value(0).toInt(), values.value(1).toInt());
  QMetaObject::invokeMethod(
      &later_, [&what, place] { what(place); }, Qt::QueuedConnection);
}

void StatusNotifierItem::setImage(const StatusImage& image) {
  image_ = &image;
  announceSoon();
}

void StatusNotifierItem::setToolTip(const QString& text) {
  toolTip_ = text;
  announceSoon();
}

void StatusNotifierItem::announceSoon() {
  if (std::exchange(announcing_, true)) return;
  QMetaObject::invokeMethod(
      &later_, [this] { announce(); }, Qt::QueuedConnection);
}

void StatusNotifierItem::announce() {
  announcing_ = false;
  if (std::exchange(announced_, image_) != image_) object_.emitSignal("NewIcon");
  if (std::exchange(announcedToolTip_, toolTip_) == toolTip_) return;
  object_.emitSignal("NewToolTip");
  object_.emitSignal("NewTitle");
}

void StatusNotifierItem::registerWith(const QString& watcher) {
  // Hosts read what there is once they know the item.
  announced_ = image_;
  announcedToolTip_ = toolTip_;
  const QDBusMessage call =
      busCall(watcher, "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher",
              "RegisterStatusNotifierItem", {connection_.baseService()});
  // No time limit: a watcher that hangs reads the call when it goes on, and nothing waits for it.
  ask(connection_, call, &later_, [](const QDBusMessage& answer) {
    if (isError(answer)) {
      qCInfo(lcTray) << "the tray did not take the icon:" << reasonOf(answer).c_str();
    }
  });
}

}  // namespace linux_desktop
