#include <utility>

#include "platform/appkit/NSWorkspace.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/foundation/Process.h"
#include "presentation/ViewController.h"
#include "shared/SettingsKeys.h"

namespace presentation {

using platform::NSScreen;
using platform::NSURL;
using platform::NSWorkspace;

void ViewController::applySelectedWallpaper() {
  oldWallpaperUrl_.clear();
  for (const auto& screen : NSScreen::screens()) {
    auto url = NSWorkspace::sharedWorkspace().desktopImageURLForScreen(*screen);
    if (url) oldWallpaperUrl_.push_back({screen, std::move(url)});
  }
  const auto path = platform::NSUserDefaults::standardUserDefaults().objectOfType<std::string>(
      shared::kUserdefaultsSelectedWallpaper);
  if (!path) return;
  for (const auto& screen : NSScreen::screens()) setWallpaper(*path, *screen);
}

void ViewController::restoreOldWallpapers() {
  for (const structScreenUrl& old : oldWallpaperUrl_) setWallpaper(old.url->path(), *old.screen);
  oldWallpaperUrl_.clear();
}

void ViewController::setWallpaper(const std::string& path, const NSScreen& screen) {
  NSWorkspace& workspace = NSWorkspace::sharedWorkspace();
  const platform::Dictionary options =
      workspace.desktopImageOptionsForScreen(screen).value_or(platform::Dictionary{});
  const auto error = workspace.setDesktopImageURL(NSURL::fileURLWithPath(path), screen, options);
  if (error) platform::print(error->localizedDescription);
}

}  // namespace presentation
