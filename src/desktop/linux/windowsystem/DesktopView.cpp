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

DesktopSpaces::DesktopSpaces(DesktopView& view)
    : view_(view), settling_(kSettling, [this] {
        if (client_ != nullptr) client_->activeSpaceDidChange();
      }) {}

DesktopSpaces::~DesktopSpaces() {
  DesktopSpaces::setClient(nullptr);
}

void DesktopSpaces::setClient(platform::port::SpacesClient* client) {
  client_ = client;
  settling_.stop();
  view_.follow(client == nullptr ? std::function<void()>() : [this] { settling_.start(); });
}

bool ToldBackdrop::isKnown() {
  if (source_ != nullptr && !std::exchange(asked_, true)) backdrop_ = source_->backdrop(monitor_);
  return backdrop_.has_value();
}

const QImage& ToldBackdrop::image() {
  if (!isKnown() || std::exchange(drawn_, true)) return image_;
  const auto image = source_->render(*backdrop_, monitor_);
  takesLong_ = !image;
  if (image && image->size() == monitor_.pixels().size()) image_ = *image;
  return image_;
}

ToldBackdrops::~ToldBackdrops() {
  follow({});
}

void ToldBackdrops::setSource(BackdropSource* source) {
  if (source_ != nullptr) source_->setChanged({});
  source_ = source;
  last_.clear();
  watch();
}

void ToldBackdrops::follow(std::function<void(const std::vector<Monitor>& others)> changed) {
  changed_ = std::move(changed);
  watch();
}

void ToldBackdrops::watch() {
  learning_.stop();
  if (source_ == nullptr) return;
  source_->setChanged(changed_ ? [this] { told(); } : std::function<void()>());
  if (changed_) learning_.start();
}

void ToldBackdrops::learn() {
  for (const Monitor& monitor : screens_.monitors()) {
    if (!last_.contains(monitor.name)) last_.emplace(monitor.name, source_->backdrop(monitor));
  }
}

void ToldBackdrops::lookAgain() {
  if (source_ != nullptr && changed_) told();
}

void ToldBackdrops::told() {
  std::vector<Monitor> others;
  for (const Monitor& monitor : screens_.monitors()) {
    const auto backdrop = source_->backdrop(monitor);
    const auto last = last_.find(monitor.name);
    if (last != last_.end() && last->second == backdrop) continue;
    last_.insert_or_assign(monitor.name, backdrop);
    others.push_back(monitor);
  }
  changed_(others);
}

}  // namespace linux_desktop
