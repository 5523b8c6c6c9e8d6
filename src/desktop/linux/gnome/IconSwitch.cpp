#include "desktop/linux/gnome/IconSwitch.h"

#include <QDBusConnection>
#include <QDBusReply>
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

const QString kShell = QStringLiteral("org.gnome.Shell");
/// By `kShell`: the service that is named as this interface is another process, which is slow.
const QString kExtensions = QStringLiteral("org.gnome.Shell.Extensions");
constexpr const char* kSwitchedOff = "disabled-extensions";
/// The shell's number for an extension that is at work.
constexpr int kAtWork = 1;

constexpr const char* kIconExtensions[] = {
    "ding@rastersoft.com",
    "gtk4-ding@smedius.gitlab.com",
};

}  // namespace

class IconSwitch::Cover final : public platform::port::WindowPeer {
 public:
  explicit Cover(IconSwitch& icons) : icons_(icons) {}
  ~Cover() override { hide(); }
  Cover(const Cover&) = delete;
  Cover& operator=(const Cover&) = delete;

  void show(const platform::port::Placement& /*placement*/) override {
    if (!std::exchange(shown_, true)) icons_.changeShown(1);
  }
  void hide() final {
    if (std::exchange(shown_, false)) icons_.changeShown(-1);
  }
  void makeKey() override {}
  void update(const std::vector<platform::port::ChangedView>& /*changes*/,
              bool /*frameChanged*/) override {}

 private:
  IconSwitch& icons_;
  bool shown_ = false;
};

std::unique_ptr<IconSwitch> IconSwitch::open() {
  if (BusPeer(kShell).process() == 0) return nullptr;
  auto shell = GuardedSettings::open("org.gnome.shell", {kSwitchedOff});
  if (!shell) return nullptr;
  return std::unique_ptr<IconSwitch>(new IconSwitch(std::move(shell)));
}

IconSwitch::IconSwitch(std::unique_ptr<GuardedSettings> shell) : shell_(std::move(shell)) {
  switchOn();
}

IconSwitch::~IconSwitch() {
  if (switchOn() && !GuardedSettings::flush())
    qCWarning(lcSession, "the desktop's icons may stay off until Calmdeck is started again");
}

std::unique_ptr<platform::port::WindowPeer> IconSwitch::createCover(
    platform::NSWindow& /*window*/, platform::port::WindowClient& /*client*/) {
  return std::make_unique<Cover>(*this);
}

void IconSwitch::changeShown(int by) {
  shown_ += by;
  following_.start();
}

// Not by the shell's own switches: they keep no mark.
void IconSwitch::follow() {
  if (shown_ == 0) {
    switchOn();
    return;
  }
  for (const QString extension : kIconExtensions) {
    ask(QDBusConnection::sessionBus(),
        busCall(kShell, QStringLiteral("/org/gnome/Shell"), kExtensions,
                QStringLiteral("GetExtensionInfo"), {extension}),
        &context_, [this, extension](const QDBusMessage& facts) { switchOff(extension, facts); });
  }
}

void IconSwitch::switchOff(const QString& extension, const QDBusMessage& facts) {
  const QDBusReply<QVariantMap> known = facts;
  const QVariant state = known.value().value(QStringLiteral("state"));
  if (shown_ == 0 || !state.isValid() || state.toInt() != kAtWork) return;
  auto off = shell_->list(kSwitchedOff).value_or(std::vector<std::string>());
  off.insert(off.end(), 2, extension.toStdString());
  if (!shell_->setList(kSwitchedOff, off))
    qCWarning(lcSession, "the desktop's icons stay: %s cannot be switched off",
              qPrintable(extension));
}

bool IconSwitch::switchOn() {
  auto off = shell_->list(kSwitchedOff).value_or(std::vector<std::string>());
  const auto before = off.size();
  for (const std::string extension : kIconExtensions) {
    if (std::ranges::count(off, extension) > 1) std::erase(off, extension);
  }
  return off.size() != before && shell_->setList(kSwitchedOff, off);
}

}  // namespace linux_desktop
