#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QStringList>
#include <QVariantMap>

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

}  // namespace linux_desktop
