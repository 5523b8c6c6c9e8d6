#include "contract/DesktopContract.h"

namespace contract {
namespace {

using platform::NSRect;
using platform::NSSize;
using platform::port::ScreenInfo;

/// Counts what it is told; `states` has the number of screens of each time.
class Told final : public platform::port::ScreensClient, public platform::port::SpacesClient {
 public:
  explicit Told(platform::Desktop& desktop) : desktop_(desktop) {}
  void screenParametersDidChange() override {
    states.push_back(desktop_.screens().screens().size());
  }
  void activeSpaceDidChange() override { ++spaceChanges; }

  std::vector<std::size_t> states;
  int spaceChanges = 0;

 private:
  platform::Desktop& desktop_;
};

const std::vector<NSSize> kTwo{{1280, 720}, {1024, 600}};
const std::vector<NSSize> kOne{{1280, 720}};

TEST_P(DesktopContract, AScreenHasAPlaceAndANameAndIsToldOnceWhenItGoesOrComes) {
  auto& screens = desk().desktop().screens();
  desk().setMonitors(kTwo);
  ASSERT_TRUE(desk().runUntil([&] { return screens.screens().size() == 2; }));
  const std::vector<ScreenInfo> both = screens.screens();
  const double scale = both[0].backingScaleFactor;
  EXPECT_GE(scale, 1);
  EXPECT_EQ(both[0].frame, (NSRect{0, 0, 1280 / scale, 720 / scale}));
  // y is up: with their upper edges in line, the lower one begins higher.
  EXPECT_EQ(both[1].frame, (NSRect{1280 / scale, 120 / scale, 1024 / scale, 600 / scale}));
  EXPECT_NE(both[0].id, both[1].id);
  Told told(desk().desktop());
  screens.setClient(&told);
  desk().setMonitors(kOne);
  EXPECT_TRUE(desk().runUntil([&] { return !told.states.empty(); }));
  EXPECT_EQ(screens.screens(), std::vector{both[0]});
  desk().setMonitors(kTwo);
  EXPECT_TRUE(desk().runUntil([&] { return told.states.size() == 2; }));
  EXPECT_EQ(screens.screens(), both);
  screens.setClient(nullptr);
  desk().setMonitors(kOne);
  EXPECT_TRUE(desk().runUntil([&] { return screens.screens().size() == 1; }));
  EXPECT_EQ(told.states, (std::vector<std::size_t>{1, 2}));
}

TEST_P(DesktopContract, AnotherSpaceIsToldOnce) {
  ASSERT_NE(desk().desktop().spaces(), nullptr);
  Told told(desk().desktop());
  auto& spaces = *desk().desktop().spaces();
  spaces.setClient(&told);
  for (int change = 1; change <= 4; ++change) {
    desk().goToSpace(static_cast<std::uint32_t>(change % 2));
    EXPECT_TRUE(desk().runUntil([&] { return told.spaceChanges >= change; }));
    EXPECT_EQ(told.spaceChanges, change);
  }
  spaces.setClient(nullptr);
}

}  // namespace
}  // namespace contract
