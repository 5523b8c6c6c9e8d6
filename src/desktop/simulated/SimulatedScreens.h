#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/simulated/CallLog.h"
#include "platform/port/Screens.h"

namespace simulated {

/// Screens as a list; one of 1280 by 720 at first.
class SimulatedScreens final : public platform::port::Screens {
 public:
  void setClient(platform::port::ScreensClient* client) override { client_ = client; }
  [[nodiscard]] std::vector<platform::port::ScreenInfo> screens() const override { return list; }

  std::vector<platform::port::ScreenInfo> list{{"A", {0, 0, 1280, 720}, 1}};
  /// Tells the program that the list was changed.
  void changed() {
    if (client_ != nullptr) client_->screenParametersDidChange();
  }
  [[nodiscard]] bool hasClient() const { return client_ != nullptr; }

 private:
  platform::port::ScreensClient* client_ = nullptr;
};

class SimulatedSpaces final : public platform::port::Spaces {
 public:
  void setClient(platform::port::SpacesClient* client) override { client_ = client; }
  /// The user goes to another space.
  void changed() {
    if (client_ != nullptr) client_->activeSpaceDidChange();
  }
  [[nodiscard]] bool hasClient() const { return client_ != nullptr; }

 private:
  platform::port::SpacesClient* client_ = nullptr;
};

/// A picture of so many pixels, told from others by its text.
class SimulatedCapture final : public platform::port::Capture {
 public:
  SimulatedCapture(std::string content, std::size_t width, std::size_t height)
      : content_(std::move(content)), width_(width), height_(height) {}
  [[nodiscard]] std::size_t pixelWidth() const override { return width_; }
  [[nodiscard]] std::size_t pixelHeight() const override { return height_; }
  [[nodiscard]] const std::string& content() const { return content_; }

 private:
  std::string content_;
  std::size_t width_;
  std::size_t height_;
};

/// Window descriptions as a list, and what their windows show.
class SimulatedWindowList final : public platform::port::WindowList {
 public:
  explicit SimulatedWindowList(CallLog& log) : log_(log) {}

  [[nodiscard]] std::optional<std::vector<platform::Dictionary>> windowsOnScreen() const override {
    return list;
  }
  [[nodiscard]] std::shared_ptr<const platform::port::Capture> capture(
      std::uint32_t window) override {
    log_.add("windowList.capture " + std::to_string(window));
    const auto found = captures.find(window);
    return found == captures.end() ? nullptr : found->second;
  }

  /// None: the list cannot be had.
  std::optional<std::vector<platform::Dictionary>> list{std::in_place};
  std::map<std::uint32_t, std::shared_ptr<const SimulatedCapture>> captures;
  /// A window with a screen's desktop picture, behind those that are listed.
  void addDesktopPicture(std::uint32_t window, std::string content, std::size_t width,
                         std::size_t height) {
    list->push_back({{"kCGWindowOwnerName", "Dock"},
                     {"kCGWindowName", "Desktop Picture - " + content},
                     {"kCGWindowNumber", std::int64_t{window}}});
    captures[window] = std::make_shared<SimulatedCapture>(std::move(content), width, height);
  }

 private:
  CallLog& log_;
};

/// Desktop pictures as paths. A screen that is not in `pictures` reports none.
class SimulatedDesktopPictures final : public platform::port::DesktopPictures {
 public:
  explicit SimulatedDesktopPictures(CallLog& log) : log_(log) {}

  [[nodiscard]] std::optional<std::string> path(const platform::port::ScreenId& screen) override {
    return find(pictures, screen);
  }
  [[nodiscard]] std::optional<platform::Dictionary> options(
      const platform::port::ScreenId& screen) override {
    return find(pictureOptions, screen);
  }
  [[nodiscard]] std::optional<std::string> set(const std::string& path,
                                               const platform::port::ScreenId& screen,
                                               const platform::Dictionary& options) override {
    log_.add("pictures.set " + screen + " " + path);
    if (auto refusal = find(refusals, screen)) return refusal;
    pictures[screen] = path;
    pictureOptions[screen] = options;
    return std::nullopt;
  }

  std::map<platform::port::ScreenId, std::string> pictures;
  std::map<platform::port::ScreenId, platform::Dictionary> pictureOptions;
  /// Why setting a screen's picture is refused.
  std::map<platform::port::ScreenId, std::string> refusals;

 private:
  template <typename T>
  [[nodiscard]] static std::optional<T> find(const std::map<platform::port::ScreenId, T>& map,
                                             const platform::port::ScreenId& screen) {
    const auto found = map.find(screen);
    return found == map.end() ? std::nullopt : std::optional(found->second);
  }

  CallLog& log_;
};

}  // namespace simulated
