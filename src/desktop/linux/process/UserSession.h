#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>
#include <optional>

#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/process/SingleInstance.h"
#include "platform/port/Program.h"

namespace linux_desktop {

/// The user's session as the application sees it: it hears of further starts of the program, and
/// over the bus of launchers and of keys and scripts of the user's own, which speak
/// org.freedesktop.Application (freedesktop.org, "D-Bus Activation"), or, with tools that cannot
/// say that much, an interface of our own. Who looks there sees the program's version and whether
/// its mode is on, too.
class UserSession final : public platform::port::Session {
 public:
  /// See SingleInstance::claim.
  [[nodiscard]] SingleInstance::Claim claim() { return instance_.claim(); }

  /// From now on the program is to be had on the bus, as soon as it has its name there. Callers are
  /// answered before anything is done; an action that there is none of is one line on standard
  /// error.
  void joinBus(const QDBusConnection& bus);

  void setClient(platform::port::SessionClient* client) override { client_ = client; }
  void modeDidChange(bool isOn) override;

 private:
  [[nodiscard]] BusInterface application();
  [[nodiscard]] BusInterface own();
  void reopen();
  void perform(const QString& action);
  [[nodiscard]] QVariantList later(const QVariant& platformData, std::function<void()> work);

  platform::port::SessionClient* client_ = nullptr;
  SingleInstance instance_{[this] { reopen(); }};
  QObject asked_;  // of what is still to be done
  bool isModeOn_ = false;
  std::optional<BusObject> object_;
};

}  // namespace linux_desktop
