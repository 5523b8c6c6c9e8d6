#include "desktop/simulated/SimulatedScreens.h"

namespace simulated {
namespace {

template <typename T>
std::optional<T> find(const std::map<std::string, T>& map, const std::string& key) {
  const auto found = map.find(key);
  return found == map.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

std::shared_ptr<const platform::port::Capture> SimulatedWindowList::capture(std::uint32_t window) {
  log_.add("windowList.capture " + std::to_string(window));
  const auto found = captures.find(window);
  return found == captures.end() ? nullptr : found->second;
}

void SimulatedWindowList::addDesktopPicture(std::uint32_t window, std::string content,
                                            std::size_t width, std::size_t height) {
  list->push_back({{"kCGWindowOwnerName", "Dock"},
                   {"kCGWindowName", "Desktop Picture - " + content},
                   {"kCGWindowNumber", std::int64_t{window}}});
  captures[window] = std::make_shared<SimulatedCapture>(std::move(content), width, height);
}

std::optional<std::string> SimulatedDesktopPictures::path(const platform::port::ScreenId& screen) {
  return find(pictures, screen);
}

std::optional<platform::Dictionary> SimulatedDesktopPictures::options(
    const platform::port::ScreenId& screen) {
  return find(pictureOptions, screen);
}

std::optional<std::string> SimulatedDesktopPictures::set(const std::string& path,
                                                         const platform::port::ScreenId& screen,
                                                         const platform::Dictionary& options) {
  log_.add("pictures.set " + screen + " " + path);
  if (auto refusal = find(refusals, screen)) return refusal;
  pictures[screen] = path;
  pictureOptions[screen] = options;
  return std::nullopt;
}

}  // namespace simulated
