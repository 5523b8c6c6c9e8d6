#pragma once

#include "platform/appkit/NSImageView.h"
#include "presentation/FeatureTest.h"

namespace presentation {

/// The program with covered desktop icons, and the desktop pictures to cover them with.
class CoversTest : public FeatureTest {
 protected:
  void launchCovering() { launchWith({shared::kUserdefaultsToggleDesktopIcons}); }

  /// A desktop picture behind the others, of these pixels; numbered from 1 on.
  void addPicture(const std::string& name, std::size_t width, std::size_t height) {
    desk.windowsOnScreen.addDesktopPicture(++lastPicture_, name, width, height);
  }
  void addPicture(const platform::port::ScreenInfo& screen, const std::string& name) {
    addPicture(name, static_cast<std::size_t>(screen.frame.width),
               static_cast<std::size_t>(screen.frame.height));
  }
  void clearPictures() {
    desk.windowsOnScreen.list.emplace();
    desk.windowsOnScreen.captures.clear();
    lastPicture_ = 0;
  }
  void changeSpace() {
    desk.workspaces.changed();
    desk.loop.settle();
  }

  /// The pictures of the covers, in their order; "" where there is none.
  [[nodiscard]] std::vector<std::string> shown() {
    std::vector<std::string> names;
    for (const auto& cover : panel().transWindow()) {
      const auto view = std::dynamic_pointer_cast<platform::NSImageView>(cover->contentView());
      const auto* capture =
          view == nullptr
              ? nullptr
              : dynamic_cast<const simulated::SimulatedCapture*>(view->image()->capture().get());
      names.push_back(capture == nullptr ? "" : capture->content());
    }
    return names;
  }

 private:
  std::uint32_t lastPicture_ = 0;
};

}  // namespace presentation
