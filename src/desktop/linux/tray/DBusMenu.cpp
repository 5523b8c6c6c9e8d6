#include "desktop/linux/tray/DBusMenu.h"

#include <QDBusVariant>
#include <QGuiApplication>
#include <QStringList>
#include <tuple>

#include "desktop/linux/language/Language.h"

namespace linux_desktop {

// The structures of com.canonical.dbusmenu, by their signatures.

/// (ia{sv}av): an item with its children, each of them again one of these.
struct LayoutItem {
  int id = 0;
  QVariantMap properties;
  QVariantList children;

  static constexpr std::tuple kFields{&LayoutItem::id, &LayoutItem::properties,
                                      &LayoutItem::children};
};

/// (ia{sv})
struct ItemProperties {
  int id = 0;
  QVariantMap properties;

  static constexpr std::tuple kFields{&ItemProperties::id, &ItemProperties::properties};
};

/// (ias)
struct RemovedProperties {
  int id = 0;
  QStringList names;

  static constexpr std::tuple kFields{&RemovedProperties::id, &RemovedProperties::names};
};

/// (isvu)
struct MenuEvent {
  int id = 0;
  QString name;
  QDBusVariant data;
  uint timestamp = 0;

  static constexpr std::tuple kFields{&MenuEvent::id, &MenuEvent::name, &MenuEvent::data,
                                      &MenuEvent::timestamp};
};

namespace {

constexpr int kRoot = 0;

/// What the panel is shown before the first menu is attached: the application's. xfce4-panel 4.18
/// reads the list when the icon appears; a right click on an icon with an empty list opens its own
/// menu, and GTK never makes a menu larger that is already open. Enlightenment 0.25 reads it then,
/// too, and tells only what is chosen of it.
QStringList expectedTitles() {
  return {localized("Preferences"), localized("Check for Updates"), localized("Quit")};
}

template <class T>
T argument(const QDBusMessage& call, int index) {
  return qdbus_cast<T>(call.arguments().value(index));
}

const char* textDirection() {
  return QGuiApplication::layoutDirection() == Qt::RightToLeft ? "rtl" : "ltr";
}

}  // namespace

DBusMenu::DBusMenu(const QDBusConnection& connection, MenuOpening& opening)
    : opening_(opening), titles_(expectedTitles()), object_(connection, kPath, {makeInterface()}) {}

BusInterface DBusMenu::makeInterface() {
  registerBusTypes<LayoutItem, ItemProperties, QList<ItemProperties>, RemovedProperties,
                   QList<RemovedProperties>, MenuEvent, QList<MenuEvent>, QList<int>>();
  const auto event = [this](const QDBusMessage& call) {
    handleEvent(argument<int>(call, 0), argument<QString>(call, 1));
    return QVariantList();
  };
  const auto aboutToShowOne = [this](const QDBusMessage& call) {
    return QVariantList{aboutToShow(argument<int>(call, 0), MenuOpening::Sign::AboutToShow)};
  };
  const auto by = [this](auto member) {
    return [this, member](const QDBusMessage& call) { return (this->*member)(call); };
  };
  return {
      .name = "com.canonical.dbusmenu",
      .methods = {{"GetLayout", {{"i", "i", "as"}, {"u", "(ia{sv}av)"}, by(&DBusMenu::getLayout)}},
                  {"GetGroupProperties",
                   {{"ai", "as"}, {"a(ia{sv})"}, by(&DBusMenu::getGroupProperties)}},
                  {"GetProperty", {{"i", "s"}, {"v"}, by(&DBusMenu::getProperty)}},
                  {"Event", {{"i", "s", "v", "u"}, {}, event}},
                  {"EventGroup", {{"a(isvu)"}, {"ai"}, by(&DBusMenu::eventGroup)}},
                  {"AboutToShow", {{"i"}, {"b"}, aboutToShowOne}},
                  {"AboutToShowGroup", {{"ai"}, {"ai", "ai"}, by(&DBusMenu::aboutToShowGroup)}}},
      .properties = {{"Version", {"u", [] { return QVariant(3U); }}},
                     {"TextDirection", {"s", [] { return QVariant(textDirection()); }}},
                     {"Status", {"s", [] { return QVariant("normal"); }}},
                     {"IconThemePath", {"as", [] { return QVariant(QStringList()); }}}},
      .emitted = {{"ItemsPropertiesUpdated", {"a(ia{sv})", "a(ias)"}},
                  {"LayoutUpdated", {"u", "i"}}}};
}

void DBusMenu::setTitles(const QStringList& titles) {
  if (titles == titles_) return;
  const bool sameItems = titles.size() == titles_.size();
  titles_ = titles;
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
  for (int child = 1; knows(child); ++child) {
    item.children.append(QVariant::fromValue(layoutOf(child, 0)));
  }
  return item;
}

QVariantList DBusMenu::getGroupProperties(const QDBusMessage& call) const {
  QList<ItemProperties> groups;
  const auto ids = argument<QList<int>>(call, 0);
  for (const int id : ids) {
    if (knows(id)) groups.append({id, propertiesOf(id)});
  }
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
  if (id != kRoot && knows(id) && name == "clicked") {
    if (!opening_.inProgress()) opening_.begin(MenuOpening::Sign::Opened);
    opening_.choose(static_cast<std::size_t>(id - 1));
  }
}

bool DBusMenu::knows(int id) const {
  return id >= kRoot && id <= titles_.size();
}

QVariantMap DBusMenu::propertiesOf(int id) const {
  if (id == kRoot) return {{"children-display", "submenu"}};
  if (!knows(id)) return {};
  // An underscore marks an access key, two stand for one.
  return {{"label", QString(titles_[id - 1]).replace('_', "__")}, {"enabled", true}};
}

}  // namespace linux_desktop
