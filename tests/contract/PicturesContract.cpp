#include <map>
#include <set>

#include "contract/ContractDesk.h"

namespace contract {
namespace {

using namespace platform;

/// The numbers of the desktop's pictures, in the order of the list.
std::vector<std::uint32_t> picturesIn(const std::vector<Dictionary>& windows) {
  std::vector<std::uint32_t> numbers;
  for (const Dictionary& window : windows) {
    const auto name = valueOf<std::string>(window, "kCGWindowName");
    if (valueOf<std::string>(window, "kCGWindowOwnerName") != "Dock" || !name ||
        !name->starts_with("Desktop Picture")) {
      continue;
    }
    const auto number = valueOf<std::int64_t>(window, "kCGWindowNumber");
    EXPECT_TRUE(number && *number >= 0 && *number <= UINT32_MAX) << *name;
    numbers.push_back(static_cast<std::uint32_t>(number.value_or(0)));
  }
  return numbers;
}

TEST_P(DesktopContract, EveryScreenHasADesktopPictureOfItsPixels) {
  ASSERT_NE(desk().desktop().windowList, nullptr);
  auto& list = *desk().desktop().windowList;
  const auto screens = desk().desktop().screens.screens();
  const auto windows = list.windowsOnScreen();
  ASSERT_TRUE(windows);
  const auto numbers = picturesIn(*windows);
  ASSERT_EQ(numbers.size(), screens.size());
  EXPECT_EQ(std::set(numbers.begin(), numbers.end()).size(), screens.size());
  for (std::size_t i = 0; i < screens.size(); ++i) {
    const auto capture = list.capture(numbers[i]);
    ASSERT_TRUE(capture) << i;
    const double scale = screens[i].backingScaleFactor;
    EXPECT_EQ(static_cast<double>(capture->pixelWidth()), screens[i].frame.width * scale);
    EXPECT_EQ(static_cast<double>(capture->pixelHeight()), screens[i].frame.height * scale);
  }
  EXPECT_EQ(list.capture(UINT32_MAX), nullptr) << "there is no such window";
}

TEST_P(DesktopContract, APictureThatIsSetIsToldAndTheOldOneComesBack) {
  ASSERT_NE(desk().desktop().desktopPictures, nullptr);
  auto& pictures = *desk().desktop().desktopPictures;
  const auto screens = desk().desktop().screens.screens();
  std::map<port::ScreenId, std::string> old;
  std::map<port::ScreenId, Dictionary> options;
  for (const port::ScreenInfo& screen : screens) {
    const auto path = pictures.path(screen.id);
    ASSERT_TRUE(path) << screen.id;
    EXPECT_TRUE(path->starts_with('/')) << *path;
    old.emplace(screen.id, *path);
    options.emplace(screen.id, pictures.options(screen.id).value_or(Dictionary{}));
  }
  const std::string picture = desk().makePicture();
  for (const port::ScreenInfo& screen : screens) {
    EXPECT_EQ(pictures.set(picture, screen.id, options[screen.id]), std::nullopt) << screen.id;
  }
  // Asking in between would make the new picture the one that was told last.
  for (const port::ScreenInfo& screen : screens) {
    const Dictionary present = pictures.options(screen.id).value_or(Dictionary{});
    EXPECT_EQ(pictures.set(old[screen.id], screen.id, present), std::nullopt) << screen.id;
  }
  for (const port::ScreenInfo& screen : screens) {
    EXPECT_TRUE(desk().runUntil([&] { return pictures.path(screen.id) == old[screen.id]; }));
    EXPECT_EQ(pictures.options(screen.id).value_or(Dictionary{}), options[screen.id]);
  }
  const port::ScreenId& first = screens.front().id;
  EXPECT_EQ(pictures.set(picture, first, options[first]), std::nullopt);
  EXPECT_TRUE(desk().runUntil([&] { return pictures.path(first) == picture; }));
  EXPECT_EQ(pictures.path("no such screen"), std::nullopt);
  EXPECT_EQ(pictures.options("no such screen"), std::nullopt);
}

TEST_P(DesktopContract, OptionsAreKeptAsTheyAreGivenAndSoIsWhatTheUserChanges) {
  auto& pictures = *desk().desktop().desktopPictures;
  const port::ScreenId screen = desk().desktop().screens.screens().front().id;
  const auto old = pictures.path(screen);
  ASSERT_TRUE(old);
  const auto before = pictures.options(screen);
  ASSERT_TRUE(before);
  EXPECT_EQ(pictures.set(desk().makePicture(), screen, *before), std::nullopt);
  desk().changeLayout(screen);
  const std::string changed = desk().layout(screen);
  ASSERT_TRUE(desk().runUntil([&] { return pictures.options(screen) != before; }));
  const auto options = pictures.options(screen);
  EXPECT_EQ(pictures.set(*old, screen, options.value()), std::nullopt);
  EXPECT_EQ(desk().layout(screen), changed) << "although the state of before was put back";
  EXPECT_TRUE(desk().runUntil([&] { return pictures.path(screen) == old; }));

  desk().changeLayout(screen);
  EXPECT_NE(desk().layout(screen), changed);
  ASSERT_TRUE(desk().runUntil([&] { return pictures.options(screen) != options; }));
  EXPECT_EQ(pictures.set(desk().makePicture(), screen, *options), std::nullopt);
  EXPECT_EQ(desk().layout(screen), changed) << "as it was given";
  EXPECT_TRUE(desk().runUntil([&] { return pictures.options(screen) == options; }));
}

}  // namespace
}  // namespace contract
