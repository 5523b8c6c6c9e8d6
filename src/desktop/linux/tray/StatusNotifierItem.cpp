#include "desktop/linux/tray/StatusNotifierItem.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <climits>

#include "desktop/linux/tray/DBusMenu.h"
#include "desktop/linux/tray/TrayLog.h"

namespace linux_desktop {
namespace {

const QString kInterface = QStringLiteral("org.kde.StatusNotifierItem");

const QString kDescription = QStringLiteral(R"xml(<interface name="org.kde.StatusNotifierItem">
  <property name="Category" type="s" access="read"/>
  <property name="Id" type="s" access="read"/>
  <property name="Title" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="WindowId" type="i" access="read"/>
  <property name="IconThemePath" type="s" access="read"/>
  <property name="Menu" type="o" access="read"/>
  <property name="ItemIsMenu" type="b" access="read"/>
  <property name="IconName" type="s" access="read"/>
  <property name="IconPixmap" type="a(iiay)" access="read"/>
  <property name="OverlayIconName" type="s" access="read"/>
  <property name="OverlayIconPixmap" type="a(iiay)" access="read"/>
  <property name="AttentionIconName" type="s" access="read"/>
  <property name="AttentionIconPixmap" type="a(iiay)" access="read"/>
  <property name="AttentionMovieName" type="s" access="read"/>
  <property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
  <method name="ContextMenu">
    <arg name="x" type="i" direction="in"/>
    <arg name="y" type="i" direction="in"/>
  </method>
  <method name="Activate">
    <arg name="x" type="i" direction="in"/>
    <arg name="y" type="i" direction="in"/>
  </method>
  <method name="SecondaryActivate">
    <arg name="x" type="i" direction="in"/>
    <arg name="y" type="i" direction="in"/>
  </method>
  <method name="Scroll">
    <arg name="delta" type="i" direction="in"/>
    <arg name="orientation" type="s" direction="in"/>
  </method>
  <method name="ProvideXdgActivationToken">
    <arg name="token" type="s" direction="in"/>
  </method>
  <signal name="NewTitle"/>
  <signal name="NewIcon"/>
  <signal name="NewAttentionIcon"/>
  <signal name="NewOverlayIcon"/>
  <signal name="NewToolTip"/>
  <signal name="NewStatus"><arg name="status" type="s"/></signal>
</interface>
)xml");

BusInterface::Property constant(const QVariant& value) {
  return [value] { return value; };
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(const QDBusConnection& connection, Reports reports)
    : connection_(connection),
      reports_(std::move(reports)),
      object_(connection, kPath, (registerIconPixmapTypes(), makeInterface()), reports_.called) {}

BusInterface StatusNotifierItem::makeInterface() {
  const auto reporting = [this](const std::function<void()>& what) {
    return [this, &what](const QDBusMessage&) {
      report(what);
      return QVariantList();
    };
  };
  const auto ignore = [](const QDBusMessage&) { return QVariantList(); };
  const auto pixmaps = [this] { return image_ == nullptr ? IconPixmaps() : image_->pixmaps; };
  const QVariant noPixmaps = QVariant::fromValue(IconPixmaps());
  return {
      .name = kInterface,
      .description = kDescription,
      .methods = {{"Activate", reporting(reports_.activated)},
                  {"ContextMenu", reporting(reports_.menuAsked)},
                  {"SecondaryActivate", ignore},
                  {"Scroll", ignore},
                  {"ProvideXdgActivationToken", ignore}},
      .properties = {{"Category", constant("ApplicationStatus")},
                     {"Id", constant("calmdeck")},
                     {"Title", constant("Calmdeck")},
                     {"Status", constant("Active")},
                     {"WindowId", constant(0)},
                     {"IconThemePath", constant("")},
                     {"Menu", constant(QVariant::fromValue(QDBusObjectPath(DBusMenu::kPath)))},
                     {"ItemIsMenu", constant(false)},
                     {"IconName", constant("")},
                     {"IconPixmap", [pixmaps] { return QVariant::fromValue(pixmaps()); }},
                     {"OverlayIconName", constant("")},
                     {"OverlayIconPixmap", constant(noPixmaps)},
                     {"AttentionIconName", constant("")},
                     {"AttentionIconPixmap", constant(noPixmaps)},
                     {"AttentionMovieName", constant("")},
                     {"ToolTip", constant(QVariant::fromValue(ToolTip{{}, {}, "Calmdeck", {}}))}}};
}

void StatusNotifierItem::report(const std::function<void()>& what) {
  QMetaObject::invokeMethod(&later_, what, Qt::QueuedConnection);
}

void StatusNotifierItem::setImage(const StatusImage& image) {
  image_ = &image;
  if (announcing_ || image_ == announced_) return;
  announcing_ = true;
  QMetaObject::invokeMethod(
      &later_, [this] { announceImage(); }, Qt::QueuedConnection);
}

void StatusNotifierItem::announceImage() {
  announcing_ = false;
  if (image_ == announced_) return;
  announced_ = image_;
  object_.emitSignal("NewIcon");
}

void StatusNotifierItem::registerWith(const QString& watcher) {
  QDBusMessage call =
      QDBusMessage::createMethodCall(watcher, "/StatusNotifierWatcher",
                                     "org.kde.StatusNotifierWatcher", "RegisterStatusNotifierItem");
  call.setArguments({connection_.baseService()});
  call.setAutoStartService(false);
  // No time limit: a watcher that hangs reads the call when it goes on, and nothing waits for it.
  auto* reply = new QDBusPendingCallWatcher(connection_.asyncCall(call, INT_MAX), &later_);
  QObject::connect(reply, &QDBusPendingCallWatcher::finished, &later_, [reply] {
    if (reply->isError())
      qCInfo(trayLog) << "the tray did not take the icon:" << reply->error().message();
    reply->deleteLater();
  });
}

}  // namespace linux_desktop
