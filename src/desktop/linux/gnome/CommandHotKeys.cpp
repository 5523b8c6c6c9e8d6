#include "desktop/linux/gnome/CommandHotKeys.h"

#include <QDBusConnection>
#include <QStandardPaths>
#include <algorithm>
#include <utility>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/gnome/Accelerator.h"
#include "desktop/linux/keys/KeyTable.h"
#include "desktop/linux/log/Log.h"
#include "platform/carbon/CarbonEvents.h"

namespace linux_desktop {
namespace {

using platform::port::HotKeyNumber;
using Paths = std::vector<std::string>;

const QString kPath = QStringLiteral("/org/calmdeck/Keys");
const QString kInterface = QStringLiteral("org.calmdeck.Keys");

/// What is ours among the user's keys.
const std::string kOurPaths =
    "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/calmdeck";

/// What can call us, the quickest first.
struct Caller {
  const char* program;
  const char* arguments;
};
constexpr Caller kCallers[] = {
    {"dbus-send",
     "--session --type=method_call --dest=org.calmdeck.Calmdeck /org/calmdeck/Keys "
     "org.calmdeck.Keys.Press uint32:%1"},
    {"busctl", "--user call org.calmdeck.Calmdeck /org/calmdeck/Keys org.calmdeck.Keys Press u %1"},
    {"gdbus",
     "call --session --dest org.calmdeck.Calmdeck --object-path /org/calmdeck/Keys "
     "--method org.calmdeck.Keys.Press %1"},
};

QString commandThatCalls() {
  for (const auto& [program, arguments] : kCallers) {
    const QString found = QStandardPaths::findExecutable(QLatin1String(program));
    if (!found.isEmpty()) return found + QLatin1Char(' ') + QLatin1String(arguments);
  }
  return {};
}

bool isOurs(const std::string& path) {
  return path.starts_with(kOurPaths);
}

}  // namespace

std::unique_ptr<CommandHotKeys> CommandHotKeys::open() {
  if (BusPeer(QStringLiteral("org.gnome.Shell")).process() == 0) return nullptr;
  auto mediaKeys = GuardedSettings::open(kMediaKeys, {kOwnBindings});
  const QString command = commandThatCalls();
  if (!mediaKeys || command.isEmpty() || GuardedSettings::keysOf(kOwnBinding).empty())
    return nullptr;
  return std::unique_ptr<CommandHotKeys>(new CommandHotKeys(std::move(mediaKeys), command));
}

CommandHotKeys::CommandHotKeys(std::unique_ptr<GuardedSettings> mediaKeys, QString command)
    : mediaKeys_(std::move(mediaKeys)),
      command_(std::move(command)),
      ear_(QDBusConnection::sessionBus(), kPath, {ear()}) {
  Paths left = mediaKeys_->list(kOwnBindings).value_or(Paths());
  std::erase_if(left, [](const std::string& path) { return !isOurs(path); });
  remove(left);
}

CommandHotKeys::~CommandHotKeys() {
  Paths paths;
  for (const HotKey& hotKey : hotKeys_) paths.push_back(hotKey.path);
  remove(paths);
  if (!paths.empty()) (void)GuardedSettings::flush();
}

BusInterface CommandHotKeys::ear() {
  BusInterface interface;
  interface.name = kInterface;
  interface.methods[QStringLiteral("Press")] = {
      {QStringLiteral("u")}, {}, [this](const QDBusMessage& call) {
        const HotKeyNumber number = call.arguments().value(0).toUInt();
        QMetaObject::invokeMethod(
            &later_, [this, number] { pressed(number); }, Qt::QueuedConnection);
        return QVariantList();
      }};
  return interface;
}

// When the key is let go nobody tells.
void CommandHotKeys::pressed(HotKeyNumber number) {
  if (std::ranges::find(hotKeys_, number, &HotKey::number) == hotKeys_.end()) return;
  if (client_ != nullptr) client_->hotKeyPressed(number);
  if (client_ != nullptr) client_->hotKeyReleased(number);
}

platform::OSStatus CommandHotKeys::registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                                  std::uint32_t modifiers,
                                                  const std::string& purpose) {
  const std::string accelerator = acceleratorOf(keyCode, modifiers);
  const std::string name = combinationName(keyCode, modifiers);
  if (accelerator.empty()) return platform::eventHotKeyInvalidErr;
  if (const auto holder = holderOfAccelerator(accelerator)) {
    qCInfo(lcKeys, "%s: %s has it", name.c_str(), holder->c_str());
    return platform::eventHotKeyExistsErr;
  }
  const HotKey hotKey{number, kOurPaths + std::to_string(number) + '/', accelerator};
  if (!bind(hotKey, purpose.empty() ? name : purpose)) {
    remove({hotKey.path});
    qCWarning(lcKeys, "%s: GNOME's settings do not take it", name.c_str());
    return platform::eventHotKeyInvalidErr;
  }
  hotKeys_.push_back(hotKey);
  return platform::noErr;
}

void CommandHotKeys::unregisterHotKey(HotKeyNumber number) {
  const auto found = std::ranges::find(hotKeys_, number, &HotKey::number);
  if (found == hotKeys_.end()) return;
  remove({found->path});
  hotKeys_.erase(found);
}

bool CommandHotKeys::bind(const HotKey& hotKey, const std::string& shown) {
  const auto own = GuardedSettings::open(kOwnBinding, {"name", "command", "binding"}, hotKey.path);
  auto all = mediaKeys_->list(kOwnBindings);
  if (!own || !all) return false;
  all->push_back(hotKey.path);
  // Whoever reads the list then finds the rest in place.
  return own->setText("name", "Calmdeck, " + shown) &&
         own->setText("command", command_.arg(hotKey.number).toStdString()) &&
         own->setText("binding", hotKey.accelerator) && mediaKeys_->setList(kOwnBindings, *all);
}

void CommandHotKeys::remove(const Paths& paths) {
  if (paths.empty()) return;
  Paths all = mediaKeys_->list(kOwnBindings).value_or(Paths());
  std::erase_if(
      all, [&](const std::string& path) { return std::ranges::find(paths, path) != paths.end(); });
  bool removed = mediaKeys_->setList(kOwnBindings, all);
  for (const std::string& path : paths) {
    const auto own = GuardedSettings::open(kOwnBinding, {"name", "command", "binding"}, path);
    for (const char* key : {"name", "command", "binding"})
      removed = own && own->setUserValue(key, std::nullopt) && removed;
  }
  if (!removed) qCWarning(lcKeys, "a key of Calmdeck's stays in GNOME's settings");
}

}  // namespace linux_desktop
