#include "desktop/linux/gnome/GnomeOwnWindows.h"

#include <QDeadlineTimer>
#include <optional>

namespace linux_desktop {
namespace {

const QString kCovers = QStringLiteral("Covers");
const QString kPopover = QStringLiteral("Popover");
const QString kPressed = QStringLiteral("Pressed");

/// The extension follows its size, and keeps it in front.
class ShellPopover final : public OwnWindows::Popover {
 public:
  explicit ShellPopover(GnomeShell& shell) : shell_(shell) {}
  ~ShellPopover() override { shell_.send(kPopover, QStringLiteral("Forget")); }
  ShellPopover(const ShellPopover&) = delete;
  ShellPopover& operator=(const ShellPopover&) = delete;

  void moveTo(const QRect& /*place*/) override {}
  // A dialog of it is in front of it anyhow.
  void giveWay(bool /*toAnother*/) override {}

 private:
  GnomeShell& shell_;
};

/// The clock of the shell's events on Wayland.
std::uint32_t now() {
  return static_cast<std::uint32_t>(QDeadlineTimer::current().deadline());
}

/// The clock begins anew every 49 days.
bool isAfter(std::uint32_t time, std::uint32_t other) {
  return static_cast<std::int32_t>(time - other) > 0;
}

}  // namespace

class GnomeOwnWindows::Watch final : public PressWatch {
 public:
  Watch(GnomeOwnWindows& windows, Pressed pressed)
      : windows_(windows), pressed_(std::move(pressed)) {
    windows_.watches_.push_back(this);
  }
  ~Watch() override { std::erase(windows_.watches_, this); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  void discardPending() override { discarded_ = now(); }
  void hear(const OutsidePress& press) const {
    if (!discarded_ || isAfter(press.time, *discarded_)) pressed_(press);
  }

 private:
  GnomeOwnWindows& windows_;
  Pressed pressed_;
  std::optional<std::uint32_t> discarded_;
};

GnomeOwnWindows::GnomeOwnWindows(GnomeShell& shell) : shell_(shell) {
  onCovers_ = GnomeShell::listen(kCovers, kPressed, [this](const QVariantList& values) {
    pressed({.time = values.value(0).toUInt(), .isOnPanel = false});
  });
  onOthers_ = GnomeShell::listen(kPopover, kPressed, [this](const QVariantList& values) {
    pressed({.time = values.value(0).toUInt(), .isOnPanel = values.value(1).toBool()});
  });
}

// The window may be there before the shell reads what was only sent.
std::unique_ptr<OwnWindows::Popover> GnomeOwnWindows::makePopover(
    QWindow& window, const QRect& /*place*/, const std::function<void()>& /*dismissed*/) {
  if (window.transientParent() != nullptr) return nullptr;
  if (!shell_.call(kPopover, QStringLiteral("Expect"))) return nullptr;
  return std::make_unique<ShellPopover>(shell_);
}

std::unique_ptr<OwnWindows::PressWatch> GnomeOwnWindows::watchPresses(QWindow& /*window*/,
                                                                      const Pressed& pressed) {
  return std::make_unique<Watch>(*this, pressed);
}

void GnomeOwnWindows::pressed(const OutsidePress& press) const {
  for (Watch* watch : std::vector(watches_)) watch->hear(press);
}

}  // namespace linux_desktop
