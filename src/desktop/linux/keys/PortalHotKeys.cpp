#include "desktop/linux/keys/PortalHotKeys.h"

#include <QDBusArgument>
#include <QRegularExpression>
#include <algorithm>
#include <utility>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/bus/BusObject.h"
#include "desktop/linux/keys/KeyTable.h"
#include "desktop/linux/log/Log.h"
#include "platform/carbon/CarbonEvents.h"

namespace linux_desktop {
namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString kRequest = QStringLiteral("org.freedesktop.portal.Request");
const QString kSession = QStringLiteral("org.freedesktop.portal.Session");

// In milliseconds; it may have to start.
constexpr int kPatience = 2000;

/// As the portal has combinations written (freedesktop.org, "Shortcuts").
constexpr ModifierNames kModifiers{"CTRL+", "ALT+", "SHIFT+", "LOGO+"};

QDBusMessage portalCall(const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments) {
  QDBusMessage call = busCall(kService, path, interface, method, arguments);
  call.setAutoStartService(true);
  return call;
}

QList<PortalShortcut> shortcutsIn(const QVariant& list) {
  return qdbus_cast<QList<PortalShortcut>>(list);
}

/// "<Control><Alt>p" as people read it: "Ctrl+Alt+P".
QString shownKeys(QString keys) {
  keys.remove(QLatin1Char('<')).replace(QLatin1Char('>'), QLatin1Char('+'));
  keys.replace(QStringLiteral("Control+"), QStringLiteral("Ctrl+"));
  const bool isCharacter = keys.size() == 1 || keys.at(keys.size() - 2) == QLatin1Char('+');
  if (isCharacter) keys.back() = keys.back().toUpper();
  return keys;
}

/// The keys that a shortcut has, for people to read. GNOME has them in a sentence of the user's
/// language: "Press <Control><Alt>p".
QString keysOf(const PortalShortcut& shortcut) {
  static const QRegularExpression accelerator(QStringLiteral("(<\\w+>)+\\S+"));
  const QString told = shortcut.details.value(QStringLiteral("trigger_description")).toString();
  const QRegularExpressionMatch match = accelerator.match(told);
  return match.hasMatch() ? shownKeys(match.captured()) : told;
}

}  // namespace

bool PortalHotKeys::isThere(const QDBusConnection& bus) {
  const QDBusMessage question =
      portalCall(kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                 {kInterface, QStringLiteral("version")});
  return !isError(bus.call(question, QDBus::Block, kPatience));
}

PortalHotKeys::PortalHotKeys(QDBusConnection bus)
    : bus_(std::move(bus)), watcher_(kService, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
  registerBusTypes<PortalShortcut, QList<PortalShortcut>>();
  connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString& name, const QString& before, const QString& now) {
            if (name == kService) {
              ownerChanged(before, now);
            } else if (now.isEmpty() && hasGiven_) {
              binding_.start();
            }
          });
  watcher_.addWatchedService(QStringLiteral("org.freedesktop.impl.portal.desktop*"));
}

PortalHotKeys::~PortalHotKeys() {
  closeSession();
}

// Its sessions end with it, and what it was asked. One that had given keys and ended need not wait
// for somebody else to start it.
void PortalHotKeys::ownerChanged(const QString& before, const QString& now) {
  session_.clear();
  if (!before.isEmpty()) {
    request_ = {};
    isKnown_ = false;
  }
  const bool isAskedAlready = !request_.path.isEmpty();
  const bool isLeftToOthers = now.isEmpty() && !std::exchange(hasGiven_, false);
  if (!hotKeys_.empty() && !isAskedAlready && !isLeftToOthers) binding_.start();
}

// By no name of a service: Qt would wait for its owner. Others are not told of our session.
void PortalHotKeys::listen() {
  if (!signals_.empty()) return;
  const auto hear = [this](const QString& path, const QString& interface, const char* name,
                           void (PortalHotKeys::*heard)(const QDBusMessage&)) {
    signals_.emplace_back(bus_, BusSignal::Source{{}, path, interface, name},
                          [this, heard](const QDBusMessage& signal) { (this->*heard)(signal); });
  };
  hear({}, kRequest, "Response", &PortalHotKeys::responded);
  hear(kPath, kInterface, "Activated", &PortalHotKeys::activated);
  hear(kPath, kInterface, "Deactivated", &PortalHotKeys::deactivated);
  hear(kPath, kInterface, "ShortcutsChanged", &PortalHotKeys::changed);
}

// Older ones have no such interface and know it, or do without. GNOME's gives no keys to a program
// that it does not know.
void PortalHotKeys::sayWhoWeAre() {
  if (std::exchange(isKnown_, true)) return;
  const QDBusMessage call = portalCall(
      kPath, QStringLiteral("org.freedesktop.host.portal.Registry"), QStringLiteral("Register"),
      {QStringLiteral("org.calmdeck.Calmdeck"), QVariantMap()});
  linux_desktop::ask(bus_, call, this, [](const QDBusMessage& answer) {
    if (isError(answer) && answer.errorName().startsWith(QLatin1String("org.freedesktop.portal.")))
      qCWarning(lcKeys, "the portal does not know Calmdeck: %s", reasonOf(answer).c_str());
  });
}

platform::OSStatus PortalHotKeys::registerHotKey(platform::port::HotKeyNumber number,
                                                 std::uint32_t keyCode, std::uint32_t modifiers,
                                                 const std::string& purpose) {
  const QString id = QString::fromStdString(combinationName(keyCode, modifiers));
  if (std::ranges::find(hotKeys_, id, &HotKey::id) != hotKeys_.end())
    return platform::eventHotKeyExistsErr;
  listen();
  hotKeys_.push_back({number, id,
                      QString::fromStdString(combinationName(keyCode, modifiers, kModifiers)),
                      purpose.empty() ? id : QString::fromStdString(purpose)});
  binding_.start();
  return platform::noErr;
}

void PortalHotKeys::unregisterHotKey(platform::port::HotKeyNumber number) {
  if (std::erase_if(hotKeys_, [&](const HotKey& key) { return key.number == number; }) > 0)
    binding_.start();
}

// --- The portal's session ---

void PortalHotKeys::bindAnew() {
  closeSession();
  request_ = {};
  if (hotKeys_.empty()) return;
  sayWhoWeAre();
  const QString token = nextToken();
  session_ = handle(QStringLiteral("session"), token);
  ask(QStringLiteral("CreateSession"), {}, {{QStringLiteral("session_handle_token"), token}},
      &PortalHotKeys::sessionCreated);
}

void PortalHotKeys::closeSession() {
  if (!session_.isEmpty()) send(std::exchange(session_, {}), kSession, QStringLiteral("Close"), {});
}

void PortalHotKeys::ask(const QString& method, QVariantList arguments, QVariantMap options,
                        void (PortalHotKeys::*answered)(const QDBusMessage& response)) {
  const QString token = nextToken();
  request_ = {handle(QStringLiteral("request"), token), answered};
  options.insert(QStringLiteral("handle_token"), token);
  arguments << options;
  linux_desktop::ask(bus_, portalCall(kPath, kInterface, method, arguments), this,
                     [this, method, path = request_.path](const QDBusMessage& answer) {
                       if (!isError(answer)) return;
                       if (request_.path == path) request_ = {};
                       qCWarning(lcKeys, "the portal's %s: %s", qPrintable(method),
                                 reasonOf(answer).c_str());
                     });
}

QString PortalHotKeys::nextToken() {
  return QStringLiteral("calmdeck%1").arg(++lastToken_);
}

QString PortalHotKeys::handle(const QString& kind, const QString& token) const {
  const QString caller = bus_.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
  return QStringList{kPath, kind, caller, token}.join(QLatin1Char('/'));
}

void PortalHotKeys::responded(const QDBusMessage& response) {
  // Others are asked for presently.
  if (response.path() != request_.path || binding_.isActive()) return;
  const Request request = std::exchange(request_, {});
  (this->*request.answered)(response);
}

void PortalHotKeys::sessionCreated(const QDBusMessage& response) {
  const auto results = qdbus_cast<QVariantMap>(response.arguments().value(1));
  session_ = results.value(QStringLiteral("session_handle")).toString();
  if (session_.isEmpty()) {
    qCWarning(lcKeys, "the portal gives no session for shortcuts");
    return;
  }
  QList<PortalShortcut> wanted;
  for (const HotKey& key : hotKeys_) {
    wanted.append({key.id,
                   {{QStringLiteral("description"), key.purpose},
                    {QStringLiteral("preferred_trigger"), key.trigger}}});
  }
  ask(QStringLiteral("BindShortcuts"),
      {QVariant::fromValue(QDBusObjectPath(session_)), QVariant::fromValue(wanted), QString()}, {},
      &PortalHotKeys::bound);
}

// By the list and not by the code: GNOME's says that it failed when all went well.
void PortalHotKeys::bound(const QDBusMessage& response) {
  const auto results = qdbus_cast<QVariantMap>(response.arguments().value(1));
  assign(shortcutsIn(results.value(QStringLiteral("shortcuts"))));
}

void PortalHotKeys::changed(const QDBusMessage& signal) {
  const auto session = signal.arguments().value(0).value<QDBusObjectPath>().path();
  // What comes before the answer is told by that, too.
  if (session_.isEmpty() || session != session_) return;
  if (!request_.path.isEmpty() || binding_.isActive()) return;
  assign(shortcutsIn(signal.arguments().value(1)));
}

void PortalHotKeys::assign(const QList<PortalShortcut>& given) {
  hasGiven_ = !given.isEmpty();
  for (const HotKey& key : std::vector(hotKeys_)) {
    const auto found = std::ranges::find(given, key.id, &PortalShortcut::id);
    const QString keys = found == given.end() ? QString() : keysOf(*found);
    if (keys.isEmpty())
      std::erase_if(hotKeys_, [&](const HotKey& one) { return one.number == key.number; });
    if (client_ == nullptr) continue;
    client_->hotKeyAssigned(key.number,
                            keys.isEmpty() ? std::nullopt : std::optional(keys.toStdString()));
  }
}

// --- Presses ---

PortalHotKeys::HotKey* PortalHotKeys::pressedOne(const QDBusMessage& signal) {
  const auto session = signal.arguments().value(0).value<QDBusObjectPath>().path();
  const auto found =
      std::ranges::find(hotKeys_, signal.arguments().value(1).toString(), &HotKey::id);
  return session == session_ && found != hotKeys_.end() ? &*found : nullptr;
}

void PortalHotKeys::activated(const QDBusMessage& signal) {
  HotKey* key = pressedOne(signal);
  if (key == nullptr) return;
  key->isDown = true;
  if (client_ != nullptr) client_->hotKeyPressed(key->number);
}

void PortalHotKeys::deactivated(const QDBusMessage& signal) {
  HotKey* key = pressedOne(signal);
  if (key == nullptr || !std::exchange(key->isDown, false) || client_ == nullptr) return;
  client_->hotKeyReleased(key->number);
}

void PortalHotKeys::send(const QString& path, const QString& interface, const QString& method,
                         const QVariantList& arguments) const {
  bus_.send(portalCall(path, interface, method, arguments));
}

}  // namespace linux_desktop
