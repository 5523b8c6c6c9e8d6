#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>

#include "desktop/linux/tray/BusObject.h"
#include "desktop/linux/tray/StatusImages.h"

namespace linux_desktop {

/// Our icon as a StatusNotifierItem on the bus. Hosts read it, draw it and tell of clicks.
class StatusNotifierItem {
 public:
  static constexpr const char* kPath = "/StatusNotifierItem";

  /// Told on the main thread, in the order of arrival, after the host has got its reply.
  struct Reports {
    std::function<void()> activated;
    /// The host draws no menus and asks us to.
    std::function<void()> menuAsked;
    /// Before each call, with the bus name of the host that made it.
    std::function<void(const QString& host)> called;
  };

  StatusNotifierItem(const QDBusConnection& connection, Reports reports);

  /// The image outlives the item. Hosts are told once a turn of the loop.
  void setImage(const StatusImage& image);
  /// Makes the item known to the watcher with this bus name. Does not wait; a refusal is logged.
  void registerWith(const QString& watcher);

 private:
  [[nodiscard]] BusInterface makeInterface();
  void report(const std::function<void()>& what);
  void announceImage();

  QDBusConnection connection_;
  Reports reports_;
  const StatusImage* image_ = nullptr;
  const StatusImage* announced_ = nullptr;
  bool announcing_ = false;
  QObject later_;  // cancels what is reported later
  BusObject object_;
};

}  // namespace linux_desktop
