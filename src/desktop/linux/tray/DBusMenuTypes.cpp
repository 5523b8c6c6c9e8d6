#include "desktop/linux/tray/DBusMenuTypes.h"

#include <QDBusMetaType>

namespace linux_desktop {

QDBusArgument& operator<<(QDBusArgument& out, const LayoutItem& item) {
  out.beginStructure();
  out << item.id << item.properties << item.children;
  out.endStructure();
  return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, LayoutItem& item) {
  in.beginStructure();
  in >> item.id >> item.properties >> item.children;
  in.endStructure();
  return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const ItemProperties& item) {
  out.beginStructure();
  out << item.id << item.properties;
  out.endStructure();
  return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, ItemProperties& item) {
  in.beginStructure();
  in >> item.id >> item.properties;
  in.endStructure();
  return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const RemovedProperties& item) {
  out.beginStructure();
  out << item.id << item.names;
  out.endStructure();
  return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, RemovedProperties& item) {
  in.beginStructure();
  in >> item.id >> item.names;
  in.endStructure();
  return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const MenuEvent& event) {
  out.beginStructure();
  out << event.id << event.name << event.data << event.timestamp;
  out.endStructure();
  return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, MenuEvent& event) {
  in.beginStructure();
  in >> event.id >> event.name >> event.data >> event.timestamp;
  in.endStructure();
  return in;
}

void registerDBusMenuTypes() {
  qDBusRegisterMetaType<LayoutItem>();
  qDBusRegisterMetaType<ItemProperties>();
  qDBusRegisterMetaType<QList<ItemProperties>>();
  qDBusRegisterMetaType<RemovedProperties>();
  qDBusRegisterMetaType<QList<RemovedProperties>>();
  qDBusRegisterMetaType<MenuEvent>();
  qDBusRegisterMetaType<QList<MenuEvent>>();
  qDBusRegisterMetaType<QList<int>>();
}

}  // namespace linux_desktop
