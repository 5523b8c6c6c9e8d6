#include "desktop/linux/keys/KdeHotKeys.h"

#include <QDBusConnection>
#include <QKeySequence>
#include <algorithm>
#include <tuple>
#include <utility>

#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/keys/KeyTable.h"
#include "desktop/linux/log/Log.h"
#include "platform/carbon/CarbonEvents.h"

namespace linux_desktop {

/// Up to four keys one after the other, of which ours is the first.
struct KdeKeySequence {
  QList<int> keys{0, 0, 0, 0};
  static constexpr auto kFields = std::tuple(&KdeKeySequence::keys);
};

namespace {

const QString kService = QStringLiteral("org.kde.kglobalaccel");
const QString kPath = QStringLiteral("/kglobalaccel");
const QString kInterface = QStringLiteral("org.kde.KGlobalAccel");
const QString kComponent = QStringLiteral("calmdeck");
const QString kComponentPath = QStringLiteral("/component/calmdeck");
const QString kComponentInterface = QStringLiteral("org.kde.kglobalaccel.Component");

/// What the service is to do with keys: there they are, whatever was on its settings page before.
constexpr uint kPresentAsTold = 0x2 | 0x4;
/// They are what the page's button for defaults goes back to, rather than to none.
constexpr uint kAsDefault = 0x8;

/// A held key repeats sooner. What comes later is another press: the service tells the release of a
/// press that was over before it looked only with its next key, and never when presses follow each
/// other within milliseconds.
constexpr qlonglong kLongestRepeat = 2000;

QVariant keysOf(int key) {
  return QVariant::fromValue(QList<KdeKeySequence>{{{key, 0, 0, 0}}});
}

bool holds(const QDBusMessage& answer, int key) {
  if (answer.arguments().isEmpty()) return false;
  const auto given = qdbus_cast<QList<KdeKeySequence>>(answer.arguments().front());
  return !given.isEmpty() && !given.front().keys.isEmpty() && given.front().keys.front() == key;
}

}  // namespace

bool KdeHotKeys::isSession() {
  const QString desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
  return desktops.split(QLatin1Char(':')).contains(QStringLiteral("KDE"));
}

QStringList KdeHotKeys::HotKey::identity() const {
  return {kComponent, action, QStringLiteral("Calmdeck"), shown};
}

KdeHotKeys::KdeHotKeys()
    : service_(kService),
      watcher_(kService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForRegistration) {
  registerBusTypes<KdeKeySequence, QList<KdeKeySequence>>();
  connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { registerAnew(); });
}

KdeHotKeys::~KdeHotKeys() {
  for (const HotKey& hotKey : hotKeys_) {
    send(QStringLiteral("setInactive"), {hotKey.identity()});
  }
}

void KdeHotKeys::listen() {
  if (pressed_) return;
  const QDBusConnection bus = QDBusConnection::sessionBus();
  const auto from = [](const char* name) {
    return BusSignal::Source{{}, kComponentPath, kComponentInterface, name, {kComponent}};
  };
  pressed_.emplace(bus, from("globalShortcutPressed"),
                   [this](const QDBusMessage& signal) { pressed(signal); });
  released_.emplace(bus, from("globalShortcutReleased"),
                    [this](const QDBusMessage& signal) { released(signal); });
}

std::optional<platform::OSStatus> KdeHotKeys::registerHotKey(platform::port::HotKeyNumber number,
                                                             std::uint32_t keyCode,
                                                             std::uint32_t modifiers,
                                                             const std::string& purpose) {
  const auto key = qtKeyOf(keyCode, modifiers);
  if (!key) return std::nullopt;
  const QString action = QString::fromStdString(combinationName(keyCode, modifiers));
  if (find(action) != nullptr) return platform::eventHotKeyExistsErr;
  listen();
  const QString shown = purpose.empty() ? QKeySequence(*key).toString(QKeySequence::NativeText)
                                        : QString::fromStdString(purpose);
  const HotKey hotKey{number, action, shown, *key};
  const QDBusMessage answer = service_.callAll(registration(hotKey)).back();
  if (!isError(answer) && holds(answer, *key)) {
    hotKeys_.push_back(hotKey);
    return platform::noErr;
  }
  // Also what comes to be only after we stopped waiting.
  send(QStringLiteral("unregister"), {kComponent, action});
  if (!isError(answer)) return platform::eventHotKeyExistsErr;
  qCWarning(lcKeys, "KDE's shortcuts cannot be had: %s", reasonOf(answer).c_str());
  return std::nullopt;
}

void KdeHotKeys::unregisterHotKey(platform::port::HotKeyNumber number) {
  const auto found = std::ranges::find(hotKeys_, number, &HotKey::number);
  if (found == hotKeys_.end()) return;
  send(QStringLiteral("unregister"), {kComponent, found->action});
  hotKeys_.erase(found);
}

void KdeHotKeys::registerAnew() {
  for (HotKey& hotKey : hotKeys_) {
    hotKey.isDown = false;
    BusPeer::send(registration(hotKey));
  }
}

std::array<QDBusMessage, 3> KdeHotKeys::registration(const HotKey& hotKey) const {
  const QString setKeys = QStringLiteral("setShortcutKeys");
  const QStringList identity = hotKey.identity();
  const QVariant keys = keysOf(hotKey.key);
  return {call(QStringLiteral("doRegister"), {identity}),
          call(setKeys, {identity, keys, kAsDefault}),
          call(setKeys, {identity, keys, kPresentAsTold})};
}

QDBusMessage KdeHotKeys::call(const QString& method, const QVariantList& arguments) const {
  QDBusMessage message = service_.method(kPath, kInterface, method, arguments);
  // It belongs to the session, but at login we may be there first.
  message.setAutoStartService(true);
  return message;
}

void KdeHotKeys::send(const QString& method, const QVariantList& arguments) const {
  const QDBusMessage message = service_.method(kPath, kInterface, method, arguments);
  BusPeer::send(std::span(&message, 1));
}

KdeHotKeys::HotKey* KdeHotKeys::find(const QString& action) {
  const auto found = std::ranges::find(hotKeys_, action, &HotKey::action);
  return found == hotKeys_.end() ? nullptr : &*found;
}

void KdeHotKeys::pressed(const QDBusMessage& signal) {
  HotKey* hotKey = find(signal.arguments().value(1).toString());
  if (hotKey == nullptr) return;
  const qlonglong time = signal.arguments().value(2).toLongLong();
  const qlonglong pause = time - std::exchange(hotKey->lastPress, time);
  if (std::exchange(hotKey->isDown, true) && pause < kLongestRepeat) {
    qCDebug(lcKeys) << "hot key" << hotKey->number << "repeats";
  } else if (client_ != nullptr) {
    client_->hotKeyPressed(hotKey->number);
  }
}

void KdeHotKeys::released(const QDBusMessage& signal) {
  HotKey* hotKey = find(signal.arguments().value(1).toString());
  if (hotKey == nullptr || !std::exchange(hotKey->isDown, false)) return;
  if (client_ != nullptr) client_->hotKeyReleased(hotKey->number);
}

}  // namespace linux_desktop
