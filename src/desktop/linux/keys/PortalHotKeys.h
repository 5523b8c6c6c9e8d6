#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <cstdint>
#include <list>
#include <tuple>
#include <vector>

#include "desktop/linux/bus/BusSignal.h"
#include "desktop/linux/loop/OneShot.h"
#include "platform/port/HotKeys.h"

namespace linux_desktop {

/// A shortcut as the portal has it.
struct PortalShortcut {
  QString id;
  QVariantMap details;
  static constexpr auto kFields = std::tuple(&PortalShortcut::id, &PortalShortcut::details);
};

/// Hot keys at the desktop portal's GlobalShortcuts, which asks the user about each new combination
/// and may give it other keys, or none: whatever is asked for is taken, and what came of it is told
/// later. A portal that ends is started again and asked again, as when the desktop's own program
/// behind it ends, which takes the keys along. Main thread only.
class PortalHotKeys final : public QObject, public platform::port::HotKeys {
 public:
  /// Whether the session's portal has shortcuts at all; those of many desktops do not. Starts it
  /// where it does not run, and waits two seconds at most.
  [[nodiscard]] static bool isThere(const QDBusConnection& bus = QDBusConnection::sessionBus());

  explicit PortalHotKeys(QDBusConnection bus = QDBusConnection::sessionBus());
  /// Gives the keys back. The user's answers stay with the desktop.
  ~PortalHotKeys() override;

  void setClient(platform::port::HotKeysClient* client) override { client_ = client; }
  [[nodiscard]] platform::OSStatus registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode, std::uint32_t modifiers,
                                                  const std::string& purpose) override;
  void unregisterHotKey(platform::port::HotKeyNumber number) override;

 private:
  struct HotKey {
    platform::port::HotKeyNumber number;
    /// The portal's name for it and ours, from which it knows the user's answer again.
    QString id;
    QString trigger;
    /// What the portal shows its user.
    QString purpose;
    bool isDown = false;
  };
  /// What the portal is working at; its answer comes by a signal from this path.
  struct Request {
    QString path;
    void (PortalHotKeys::*answered)(const QDBusMessage& response);
  };

  void listen();
  void sayWhoWeAre();
  void ownerChanged(const QString& before, const QString& now);
  void bindAnew();
  void closeSession();
  void ask(const QString& method, QVariantList arguments, QVariantMap options,
           void (PortalHotKeys::*answered)(const QDBusMessage& response));
  [[nodiscard]] QString nextToken();
  /// The path of what the portal makes for that token.
  [[nodiscard]] QString handle(const QString& kind, const QString& token) const;
  void responded(const QDBusMessage& response);
  void sessionCreated(const QDBusMessage& response);
  void bound(const QDBusMessage& response);
  void changed(const QDBusMessage& signal);
  void assign(const QList<PortalShortcut>& given);
  [[nodiscard]] HotKey* pressedOne(const QDBusMessage& signal);
  void activated(const QDBusMessage& signal);
  void deactivated(const QDBusMessage& signal);
  void send(const QString& path, const QString& interface, const QString& method,
            const QVariantList& arguments) const;

  QDBusConnection bus_;
  QDBusServiceWatcher watcher_;
  platform::port::HotKeysClient* client_ = nullptr;
  std::vector<HotKey> hotKeys_;
  /// A session binds once, so that one is made for all that are registered in a turn.
  OneShot binding_{std::chrono::milliseconds::zero(), [this] { bindAnew(); }};
  QString session_;
  Request request_;
  int lastToken_ = 0;
  /// None before the first hot key.
  std::list<BusSignal> signals_;
  /// The portal that runs, any of the keys.
  bool hasGiven_ = false;
  /// That one has been told who we are.
  bool isKnown_ = false;
};

}  // namespace linux_desktop
