#include <algorithm>
#include <limits>

#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSWindowController.h"
#include "platform/appkit/NSWorkspace.h"
#include "platform/coregraphics/CGWindow.h"
#include "platform/foundation/Process.h"
#include "presentation/ViewController.h"

namespace presentation {

using platform::Dictionary;
using platform::NSImage;
using platform::NSImageView;
using platform::NSNotificationCenter;
using platform::NSScreen;
using platform::NSWorkspace;

namespace {

constexpr double kScreenChangeDelay = 1.0;

/// The number of the window, if the description is of a screen's desktop picture.
std::optional<platform::CGWindowID> desktopPictureNumber(const Dictionary& window) {
  const auto owner = platform::valueOf<std::string>(window, platform::kCGWindowOwnerName);
  const auto name = platform::valueOf<std::string>(window, platform::kCGWindowName);
  const auto number = platform::valueOf<std::int64_t>(window, platform::kCGWindowNumber);
  if (owner != "Dock" || !name || !name->starts_with("Desktop Picture") || !number) {
    return std::nullopt;
  }
  if (*number < 0 || *number > std::numeric_limits<platform::CGWindowID>::max()) {
    return std::nullopt;
  }
  return static_cast<platform::CGWindowID>(*number);
}

/// How large a picture of the screen is in pixels.
platform::NSSize pictureSize(const NSScreen& screen) {
  const double scale = screen.backingScaleFactor() == 2.0 ? 2.0 : 1.0;
  return {scale * screen.frame().width, scale * screen.frame().height};
}

void show(platform::NSWindow& cover, const std::shared_ptr<NSImage>& picture,
          const platform::NSRect& frame) {
  const auto view = NSImageView::initWithFrame(frame);
  view->setImage(picture);
  if (!CGRectEqualToRect(cover.frame(), frame)) cover.setFrame(frame, false, false);
  cover.setContentView(view);
}

}  // namespace

void ViewController::doHideDesktopIcon() {
  for (const auto& screen : NSScreen::screens()) makeCoverWindow(*screen);
  spaceChange();
  NSWorkspace::sharedWorkspace().notificationCenter().addObserver(
      shared_from_this(), "spaceChange", platform::NSWorkspaceActiveSpaceDidChangeNotification);
  NSNotificationCenter::defaultCenter().addObserver(
      shared_from_this(), "screenChangedWithNotification:",
      platform::NSApplicationDidChangeScreenParametersNotification);
}

void ViewController::doShowDesktopIcon() {
  NSWorkspace::sharedWorkspace().notificationCenter().removeObserver(
      *this, platform::NSWorkspaceActiveSpaceDidChangeNotification);
  NSNotificationCenter::defaultCenter().removeObserver(
      *this, platform::NSApplicationDidChangeScreenParametersNotification);
  for (const auto& cover : transWindow_) {
    cover->orderOut(this);
    if (const auto controller = cover->windowController()) controller->setWindow(nullptr);
  }
  transWindow_.clear();
}

std::vector<std::shared_ptr<NSImage>> ViewController::captureDesktopPictures() {
  std::vector<std::shared_ptr<NSImage>> pictures;
  const auto windows = platform::CGWindowListCopyWindowInfo();
  if (!windows) return pictures;
  for (const Dictionary& window : *windows) {
    const auto number = desktopPictureNumber(window);
    if (!number) continue;
    if (const auto capture = platform::CGWindowListCreateImage(*number)) {
      pictures.push_back(NSImage::initWithCGImage(capture, {0, 0}));
    }
  }
  return pictures;
}

void ViewController::spaceChange() {
  if (!toggle(&ViewController::toggleButtonHideDesktopIcons).isOn()) return;
  std::vector<std::shared_ptr<NSImage>> pictures = captureDesktopPictures();
  const auto screens = NSScreen::screens();
  // A screen may have come whose cover is not made yet, or the covers may be gone already.
  const std::size_t covered = std::min(screens.size(), transWindow_.size());
  for (std::size_t i = 0; i < covered; ++i) {
    const auto match = std::ranges::find(pictures, pictureSize(*screens[i]), &NSImage::size);
    if (match == pictures.end()) continue;
    show(*transWindow_[i], *match, screens[i]->frame());
    pictures.erase(match);
  }
}

std::shared_ptr<BGWindow> ViewController::makeCoverWindow(const NSScreen& screen) {
  const platform::NSSize size{screen.frame().width, screen.frame().height};
  auto cover = std::make_shared<BGWindow>(platform::NSRect{0, 0, size.width, size.height},
                                          platform::NSWindowStyle::Borderless,
                                          platform::NSBackingStoreType::Buffered, true, screen);
  cover->setCollectionBehavior(platform::NSWindowCollectionBehavior::CanJoinAllSpaces);
  cover->setLevel(platform::CGWindowLevelForKey(platform::CGWindowLevelKey::BackstopMenu));
  cover->setCanHide(false);
  cover->setExcludedFromWindowsMenu(true);
  cover->setHidesOnDeactivate(false);
  cover->discardCursorRects();
  cover->discardEventsMatchingMask(~platform::NSEventMask{0});
  cover->orderBack(nullptr);
  cover->setRestorable(false);
  cover->setAnimationBehavior(platform::NSWindowAnimationBehavior::None);
  transWindow_.push_back(cover);
  return cover;
}

void ViewController::screenChangedWithNotification(const platform::NSNotification& notification) {
  if (timerScreenChanged_ && timerScreenChanged_->isValid()) {
    timerScreenChanged_->invalidate();
    timerScreenChanged_.reset();
  }
  platform::print(platform::description(notification.userInfo()));
  platform::print("userInfo");
  platform::print("userinfo *****");
  const auto screens = NSScreen::screens();
  for (std::size_t i = transWindow_.size(); i < screens.size(); ++i) makeCoverWindow(*screens[i]);
  timerScreenChanged_ = platform::NSTimer::scheduledTimerWithTimeInterval(
      kScreenChangeDelay, shared_from_this(), "spaceChange");
}

}  // namespace presentation
