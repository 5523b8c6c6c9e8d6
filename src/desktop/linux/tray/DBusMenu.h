#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QList>
#include <QStringList>
#include <QVariantMap>

#include "desktop/linux/tray/BusObject.h"
#include "desktop/linux/tray/ItemMenu.h"

namespace linux_desktop {

/// The structures of com.canonical.dbusmenu, by their signatures.

/// (ia{sv}av): an item with its children, each of them again one of these.
struct LayoutItem {
  int id = 0;
  QVariantMap properties;
  QVariantList children;
};

/// (ia{sv})
struct ItemProperties {
  int id = 0;
  QVariantMap properties;
};

/// (ias)
struct RemovedProperties {
  int id = 0;
  QStringList names;
};

/// (isvu)
struct MenuEvent {
  int id = 0;
  QString name;
  QDBusVariant data;
  uint timestamp = 0;
};

QDBusArgument& operator<<(QDBusArgument& out, const LayoutItem& item);
const QDBusArgument& operator>>(const QDBusArgument& in, LayoutItem& item);
QDBusArgument& operator<<(QDBusArgument& out, const ItemProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& in, ItemProperties& item);
QDBusArgument& operator<<(QDBusArgument& out, const RemovedProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& in, RemovedProperties& item);
QDBusArgument& operator<<(QDBusArgument& out, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& in, MenuEvent& event);

/// Makes the structures known to QtDBus. Call it before the first use; again does no harm.
void registerDBusMenuTypes();

/// The menu as a panel sees it (com.canonical.dbusmenu, version 3): a flat list under one root. The
/// panel draws it and tells what happens to it. Item n of the list has the id n + 1.
class DBusMenu {
 public:
  static constexpr const char* kPath = "/StatusNotifierItem/Menu";

  /// `opening` outlives the menu.
  DBusMenu(const QDBusConnection& connection, MenuOpening& opening);

  /// Replaces the list, and says so to a panel that may be showing it.
  void setEntries(MenuEntries entries);

 private:
  [[nodiscard]] BusInterface makeInterface();
  [[nodiscard]] QVariantList getLayout(const QDBusMessage& call) const;
  [[nodiscard]] QVariantList getGroupProperties(const QDBusMessage& call) const;
  [[nodiscard]] QVariantList getProperty(const QDBusMessage& call) const;
  [[nodiscard]] QVariantList eventGroup(const QDBusMessage& call);
  [[nodiscard]] QVariantList aboutToShowGroup(const QDBusMessage& call);
  /// True when the panel must ask for the list again.
  bool aboutToShow(int id, MenuOpening::Sign sign);
  void handleEvent(int id, const QString& name);

  [[nodiscard]] bool knows(int id) const;
  [[nodiscard]] QVariantMap propertiesOf(int id) const;
  [[nodiscard]] LayoutItem layoutOf(int id, int depth) const;

  MenuOpening& opening_;
  MenuEntries entries_;
  uint revision_ = 1;
  BusObject object_;
};

}  // namespace linux_desktop
