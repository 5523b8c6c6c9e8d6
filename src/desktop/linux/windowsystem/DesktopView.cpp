#include "desktop/linux/windowsystem/DesktopView.h"

#include <chrono>
#include <utility>

#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSWindow.h"
#include "platform/coregraphics/CGWindow.h"

namespace linux_desktop {
namespace {

constexpr std::chrono::milliseconds kSettling{150};

class DesktopCapture final : public platform::port::Capture {
 public:
  DesktopCapture(DesktopView& view, Monitor monitor) : view_(view), monitor_(std::move(monitor)) {}

  [[nodiscard]] std::size_t pixelWidth() const override { return pixels(monitor_.points.width()); }
  [[nodiscard]] std::size_t pixelHeight() const override {
    return pixels(monitor_.points.height());
  }
  /// Of the monitor's own device pixels.
  [[nodiscard]] std::shared_ptr<const HeldPicture> picture() const {
    if (!picture_) picture_ = view_.picture(monitor_);
    return *picture_;
  }

 private:
  [[nodiscard]] std::size_t pixels(int points) const {
    return static_cast<std::size_t>(points * backingScaleOf(monitor_));
  }

  DesktopView& view_;
  Monitor monitor_;
  mutable std::optional<std::shared_ptr<const HeldPicture>> picture_;
};

}  // namespace

// A desktop picture's number is one more than its screen's place in the list.

std::optional<std::vector<platform::Dictionary>> DesktopWindowList::windowsOnScreen() const {
  std::vector<platform::Dictionary> windows;
  std::int64_t number = 0;
  for (const Monitor& monitor : screens_.monitors()) {
    platform::Dictionary window;
    window.emplace(platform::kCGWindowOwnerName, "Dock");
    window.emplace(platform::kCGWindowName, "Desktop Picture - " + monitor.name.toStdString());
    window.emplace(platform::kCGWindowNumber, ++number);
    windows.push_back(std::move(window));
  }
  return windows;
}

std::shared_ptr<const platform::port::Capture> DesktopWindowList::capture(
    std::uint32_t windowNumber) {
  const auto& monitors = screens_.monitors();
  if (windowNumber < 1 || windowNumber > monitors.size()) return nullptr;
  return std::make_shared<DesktopCapture>(view_, monitors[windowNumber - 1]);
}

std::shared_ptr<const HeldPicture> pictureIn(const platform::NSWindow& window) {
  const auto view = std::dynamic_pointer_cast<platform::NSImageView>(window.contentView());
  if (!view || !view->image()) return nullptr;
  const auto capture = std::dynamic_pointer_cast<const DesktopCapture>(view->image()->capture());
  return capture ? capture->picture() : nullptr;
}

DesktopSpaces::DesktopSpaces(DesktopView& view) : view_(view) {
  settling_.setSingleShot(true);
  settling_.setInterval(kSettling);
  QObject::connect(&settling_, &QTimer::timeout, &settling_, [this] {
    if (client_ != nullptr) client_->activeSpaceDidChange();
  });
}

DesktopSpaces::~DesktopSpaces() {
  DesktopSpaces::setClient(nullptr);
}

void DesktopSpaces::setClient(platform::port::SpacesClient* client) {
  client_ = client;
  settling_.stop();
  view_.follow(client == nullptr ? std::function<void()>() : [this] { settling_.start(); });
}

}  // namespace linux_desktop
