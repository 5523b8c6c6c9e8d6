#include "desktop/linux/tray/DBusMenu.h"

namespace linux_desktop {
namespace {

constexpr int kRoot = 0;

/// What the panel is shown before the first menu is attached: blank lines, as many and as wide as
/// the application's. xfce4-panel 4.18 reads the list when the icon appears; a right click on an
/// icon with an empty list opens its own menu, and GTK never makes a menu larger that is already
/// open. So a menu of another length is whole from its second opening on.
const MenuEntries kExpected(3, MenuEntry{QString(10, QChar(0x2003)), false});

const QString kDescription = QStringLiteral(R"xml(<interface name="com.canonical.dbusmenu">
  <property name="Version" type="u" access="read"/>
  <property name="TextDirection" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="IconThemePath" type="as" access="read"/>
  <method name="GetLayout">
    <arg type="i" name="parentId" direction="in"/>
    <arg type="i" name="recursionDepth" direction="in"/>
    <arg type="as" name="propertyNames" direction="in"/>
    <arg type="u" name="revision" direction="out"/>
    <arg type="(ia{sv}av)" name="layout" direction="out"/>
  </method>
  <method name="GetGroupProperties">
    <arg type="ai" name="ids" direction="in"/>
    <arg type="as" name="propertyNames" direction="in"/>
    <arg type="a(ia{sv})" name="properties" direction="out"/>
  </method>
  <method name="GetProperty">
    <arg type="i" name="id" direction="in"/>
    <arg type="s" name="name" direction="in"/>
    <arg type="v" name="value" direction="out"/>
  </method>
  <method name="Event">
    <arg type="i" name="id" direction="in"/>
    <arg type="s" name="eventId" direction="in"/>
    <arg type="v" name="data" direction="in"/>
    <arg type="u" name="timestamp" direction="in"/>
  </method>
  <method name="EventGroup">
    <arg type="a(isvu)" name="events" direction="in"/>
    <arg type="ai" name="idErrors" direction="out"/>
  </method>
  <method name="AboutToShow">
    <arg type="i" name="id" direction="in"/>
    <arg type="b" name="needUpdate" direction="out"/>
  </method>
  <method name="AboutToShowGroup">
    <arg type="ai" name="ids" direction="in"/>
    <arg type="ai" name="updatesNeeded" direction="out"/>
    <arg type="ai" name="idErrors" direction="out"/>
  </method>
  <signal name="ItemsPropertiesUpdated">
    <arg type="a(ia{sv})" name="updatedProps"/>
    <arg type="a(ias)" name="removedProps"/>
  </signal>
  <signal name="LayoutUpdated">
    <arg type="u" name="revision"/>
    <arg type="i" name="parent"/>
  </signal>
  <signal name="ItemActivationRequested">
    <arg type="i" name="id"/>
    <arg type="u" name="timestamp"/>
  </signal>
</interface>
)xml");

template <class T>
T argument(const QDBusMessage& call, int index) {
  return qdbus_cast<T>(call.arguments().value(index));
}

}  // namespace

DBusMenu::DBusMenu(const QDBusConnection& connection, MenuOpening& opening)
    : opening_(opening),
      entries_(kExpected),
      object_(connection, kPath, (registerDBusMenuTypes(), makeInterface())) {}

BusInterface DBusMenu::makeInterface() {
  const auto event = [this](const QDBusMessage& call) {
    handleEvent(argument<int>(call, 0), argument<QString>(call, 1));
    return QVariantList();
  };
  const auto aboutToShowOne = [this](const QDBusMessage& call) {
    return QVariantList{aboutToShow(argument<int>(call, 0), MenuOpening::Sign::AboutToShow)};
  };
  return {.name = "com.canonical.dbusmenu",
          .description = kDescription,
          .methods = {{"GetLayout", [this](const auto& call) { return getLayout(call); }},
                      {"GetGroupProperties",
                       [this](const auto& call) { return getGroupProperties(call); }},
                      {"GetProperty", [this](const auto& call) { return getProperty(call); }},
                      {"Event", event},
                      {"EventGroup", [this](const auto& call) { return eventGroup(call); }},
                      {"AboutToShow", aboutToShowOne},
                      {"AboutToShowGroup",
                       [this](const auto& call) { return aboutToShowGroup(call); }}},
          .properties = {{"Version", [] { return QVariant(3U); }},
                         {"TextDirection", [] { return QVariant("ltr"); }},
                         {"Status", [] { return QVariant("normal"); }},
                         {"IconThemePath", [] { return QVariant(QStringList()); }}}};
}

void DBusMenu::setEntries(MenuEntries entries) {
  if (entries == entries_) return;
  const bool sameItems = entries.size() == entries_.size();
  entries_ = std::move(entries);
  ++revision_;
  if (!sameItems) {
    object_.emitSignal("LayoutUpdated", {revision_, kRoot});
    return;
  }
  QList<ItemProperties> updated;
  for (int id = 1; knows(id); ++id) updated.append({id, propertiesOf(id)});
  object_.emitSignal("ItemsPropertiesUpdated", {QVariant::fromValue(updated),
                                                QVariant::fromValue(QList<RemovedProperties>())});
}

QVariantList DBusMenu::getLayout(const QDBusMessage& call) const {
  const int parent = argument<int>(call, 0);
  const int depth = argument<int>(call, 1);
  return {revision_, QVariant::fromValue(layoutOf(parent, depth))};
}

LayoutItem DBusMenu::layoutOf(int id, int depth) const {
  LayoutItem item{id, propertiesOf(id), {}};
  if (id != kRoot || depth == 0) return item;
  for (int child = 1; knows(child); ++child)
    item.children.append(QVariant::fromValue(layoutOf(child, 0)));
  return item;
}

QVariantList DBusMenu::getGroupProperties(const QDBusMessage& call) const {
  QList<ItemProperties> groups;
  const auto ids = argument<QList<int>>(call, 0);
  for (const int id : ids)
    if (knows(id)) groups.append({id, propertiesOf(id)});
  for (int id = kRoot; ids.isEmpty() && knows(id); ++id) groups.append({id, propertiesOf(id)});
  return {QVariant::fromValue(groups)};
}

QVariantList DBusMenu::getProperty(const QDBusMessage& call) const {
  const QVariant value = propertiesOf(argument<int>(call, 0)).value(argument<QString>(call, 1), "");
  return {QVariant::fromValue(QDBusVariant(value))};
}

QVariantList DBusMenu::eventGroup(const QDBusMessage& call) {
  QList<int> unknown;
  for (const MenuEvent& event : argument<QList<MenuEvent>>(call, 0)) {
    if (!knows(event.id)) unknown.append(event.id);
    handleEvent(event.id, event.name);
  }
  return {QVariant::fromValue(unknown)};
}

QVariantList DBusMenu::aboutToShowGroup(const QDBusMessage& call) {
  QList<int> changed;
  QList<int> unknown;
  for (const int id : argument<QList<int>>(call, 0)) {
    if (!knows(id)) unknown.append(id);
    if (aboutToShow(id, MenuOpening::Sign::AboutToShowGroup)) changed.append(id);
  }
  return {QVariant::fromValue(changed), QVariant::fromValue(unknown)};
}

bool DBusMenu::aboutToShow(int id, MenuOpening::Sign sign) {
  if (id != kRoot) return false;
  const uint before = revision_;
  opening_.begin(sign);
  return revision_ != before;
}

void DBusMenu::handleEvent(int id, const QString& name) {
  if (id == kRoot && name == "opened") opening_.begin(MenuOpening::Sign::Opened);
  if (id == kRoot && name == "closed") opening_.endUnlessChosen();
  if (id != kRoot && knows(id) && name == "clicked")
    opening_.choose(static_cast<std::size_t>(id - 1));
}

bool DBusMenu::knows(int id) const {
  return id >= kRoot && static_cast<std::size_t>(id) <= entries_.size();
}

QVariantMap DBusMenu::propertiesOf(int id) const {
  if (id == kRoot) return {{"children-display", "submenu"}};
  if (!knows(id)) return {};
  const MenuEntry& entry = entries_[static_cast<std::size_t>(id - 1)];
  // An underscore marks an access key, two stand for one.
  return {{"label", QString(entry.title).replace('_', "__")}, {"enabled", entry.enabled}};
}

}  // namespace linux_desktop
