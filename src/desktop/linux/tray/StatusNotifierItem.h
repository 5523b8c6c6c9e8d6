#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QPoint>
#include <QString>
#include <functional>

#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/tray/StatusImages.h"

namespace linux_desktop {

/// Our icon as a StatusNotifierItem on the bus. Hosts read it, draw it and tell of clicks.
class StatusNotifierItem {
 public:
  static constexpr const char* kPath = "/StatusNotifierItem";

  /// A click, with its place near the item in coordinates of the host's choice; some hosts send
  /// what means nothing.
  using Clicked = std::function<void(QPoint place)>;

  /// Told on the main thread, in the order of arrival, after the host has got its reply.
  struct Reports {
    Clicked activated;
    /// The host draws no menus and asks us to.
    Clicked menuAsked;
    /// What the user's click gives leave to take the keyboard with (xdg-activation). It comes
    /// before the click itself, or before the host opens the menu that it draws.
    std::function<void(const QString& token)> tokenGiven;
    /// Before each call, with the bus name of the host that made it.
    std::function<void(const QString& host)> called;
  };

  StatusNotifierItem(const QDBusConnection& connection, Reports reports);

  /// The image outlives the item. Hosts are told once a turn of the loop.
  void setImage(const StatusImage& image);
  /// Whether trays are to show it; they are at first.
  void setWanted(bool wanted);
  /// Shown when the pointer rests on the item, and what panels tell assistive technology of it.
  void setToolTip(const QString& text);
  /// Makes the item known to the watcher with this bus name. Does not wait; a refusal is logged.
  void registerWith(const QString& watcher);

 private:
  [[nodiscard]] BusInterface makeInterface();
  void report(const Clicked& what, const QDBusMessage& call);
  void announceSoon();
  void announce();
  [[nodiscard]] QString status() const;

  QDBusConnection connection_;
  Reports reports_;
  const StatusImage* image_ = nullptr;
  const StatusImage* announced_ = nullptr;
  QString toolTip_;
  QString announcedToolTip_;
  bool announcing_ = false;
  bool wanted_ = true;
  QObject later_;  // cancels what is reported later
  BusObject object_;
};

}  // namespace linux_desktop
