#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include "desktop/linux/notifications/BusAdapter.h"

namespace linux_desktop {

/// A daemon whose state is to be read from properties that it says the changes of.
class PropertyDoNotDisturb : public BusAdapter {
  Q_OBJECT

 protected:
  /// `interface` is the one that has the properties.
  PropertyDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon,
                       QString interface);

  [[nodiscard]] const QString& owner() const { return owner_; }

  /// None when the properties, which may be some of all, do not tell.
  [[nodiscard]] virtual std::optional<bool> stateOf(const QVariantMap& properties) const = 0;

  [[nodiscard]] QDBusMessage stateQuestion() const override;
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) const override;

 private:
  Q_SLOT void propertiesChanged(const QString& interface, const QVariantMap& changed,
                                const QStringList& invalidated);

  QString owner_;
  QString interface_;
};

/// dunst: "paused", or from 1.12 on the pause level from 0 to 100, of which any but 0 is on. dunst
/// forgets it when it ends.
class DunstDoNotDisturb final : public PropertyDoNotDisturb {
  Q_OBJECT

 public:
  DunstDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;

 protected:
  [[nodiscard]] std::optional<bool> stateOf(const QVariantMap& properties) const override;
};

/// Plasma, and whatever else offers inhibitions: each program that wants quiet holds one of its
/// own, and it is quiet while there is any. On is whether we hold ours, so that it stays quiet when
/// the others' end; nobody else's can be ended. Ours ends with our connection to the bus, and when
/// the user ends all.
class InhibitionDoNotDisturb final : public PropertyDoNotDisturb {
  Q_OBJECT

 public:
  InhibitionDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] std::optional<bool> isOn() override;
  [[nodiscard]] bool set(bool on) override;

 protected:
  [[nodiscard]] std::optional<bool> stateOf(const QVariantMap& properties) const override;

 private:
  void inhibit();
  void release();

  bool wanted_ = false;
  bool inhibiting_ = false;  // asked for, the ticket is not here yet
  std::optional<uint> ticket_;
};

}  // namespace linux_desktop
