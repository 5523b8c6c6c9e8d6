#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/tray/ItemMenu.h"

namespace linux_desktop {

struct LayoutItem;

/// The menu as a panel sees it (com.canonical.dbusmenu, version 3): a flat list under one root. The
/// panel draws it and tells what happens to it. Item n of the list has the id n + 1.
class DBusMenu {
 public:
  static constexpr const char* kPath = "/StatusNotifierItem/Menu";

  /// `opening` outlives the menu.
  DBusMenu(const QDBusConnection& connection, MenuOpening& opening);

  /// Replaces the list, and says so to a panel that may be showing it.
  void setTitles(const QStringList& titles);

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
  QStringList titles_;
  uint revision_ = 1;
  BusObject object_;
};

}  // namespace linux_desktop
