#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/bus/BusSignal.h"
#include "platform/port/HotKeys.h"

namespace linux_desktop {

/// Hot keys at the service in which KDE keeps all shortcuts, so that they are seen, and can be
/// changed, on its settings page. Other keys given there count until the hot key is registered
/// anew, which is when the program starts. A service that starts anew is told of them again.
class KdeHotKeys final : public QObject {
 public:
  /// Whether this session is KDE's, by its own word. On others the service may run as well, for a
  /// while, since a program of KDE's needs it.
  [[nodiscard]] static bool isSession();

  KdeHotKeys();
  /// Gives the keys back, but leaves the names on the settings page.
  ~KdeHotKeys() override;

  void setClient(platform::port::HotKeysClient* client) { client_ = client; }
  /// As port::HotKeys has it, within half a second. None when the service does not answer or cannot
  /// name the combination.
  [[nodiscard]] std::optional<platform::OSStatus> registerHotKey(
      platform::port::HotKeyNumber number, std::uint32_t keyCode, std::uint32_t modifiers,
      const std::string& purpose);
  void unregisterHotKey(platform::port::HotKeyNumber number);

 private:
  struct HotKey {
    platform::port::HotKeyNumber number;
    /// The service's name for it, and ours.
    QString action;
    /// What people read on the page, and when they give the keys to something else.
    QString shown;
    /// As Qt has it: a key and modifiers.
    int key;
    bool isDown = false;
    /// When it was pressed or repeated, in milliseconds; 0: never.
    qlonglong lastPress = 0;

    [[nodiscard]] QStringList identity() const;
  };

  void listen();
  void pressed(const QDBusMessage& signal);
  void released(const QDBusMessage& signal);
  void registerAnew();
  /// All that the service is told of one; the last answer says whether it got its keys.
  [[nodiscard]] std::array<QDBusMessage, 3> registration(const HotKey& hotKey) const;
  void send(const QString& method, const QVariantList& arguments) const;
  [[nodiscard]] QDBusMessage call(const QString& method, const QVariantList& arguments) const;
  [[nodiscard]] HotKey* find(const QString& action);

  BusPeer service_;
  QDBusServiceWatcher watcher_;
  platform::port::HotKeysClient* client_ = nullptr;
  std::vector<HotKey> hotKeys_;
  std::optional<BusSignal> pressed_;
  std::optional<BusSignal> released_;
};

}  // namespace linux_desktop
