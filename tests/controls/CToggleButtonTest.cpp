#include "controls/CToggleButton.h"

#include <gtest/gtest.h>

#include "support/DeskTest.h"

namespace controls {
namespace {

using namespace std::chrono_literals;
using platform::NSColor;
using platform::NSEventType;
using platform::NSRect;
using tests::Listener;

/// How far an animation is after a third of its time.
constexpr double kThird = 0.57586;
/// Where the knob's left edge is then on its way from 2 to 20.
constexpr double kThirdOfSlide = 2 + 18 * kThird;

const NSColor kRed = NSColor::RGBA{1, 0, 0, 1};
const NSColor kBlue = NSColor::RGBA{0, 0, 1, 1};

class CToggleButtonTest : public tests::DeskTest {
 protected:
  CToggleButtonTest() {
    toggle->layoutSubtreeIfNeeded();
    toggle->statetag = 44;
    platform::NSNotificationCenter::defaultCenter().addObserver(listener, "heard:", "toggle");
  }

  void press() { toggle->mouseDown({NSEventType::LeftMouseDown, {}}); }
  void release() { toggle->mouseUp({NSEventType::LeftMouseUp, {}}); }
  [[nodiscard]] NSRect knob() const { return toggle->circle()->frame(); }
  [[nodiscard]] NSRect knobOnScreen() const {
    return toggle->circle()->presentationFrame(desk.loop.now());
  }
  [[nodiscard]] platform::CALayer& track() const { return *toggle->backVw()->layer(); }
  [[nodiscard]] platform::CALayer& knobLayer() const { return *toggle->circle()->layer(); }
  static Listener::Heard heard(bool isOn, std::int64_t index) {
    return {"toggle", platform::Dictionary{{"isOn", isOn}, {"index", index}}};
  }

  std::shared_ptr<CToggleButton> toggle =
      platform::objectFromCoder<CToggleButton>(tests::Attributes());
  std::shared_ptr<Listener> listener = std::make_shared<Listener>();
};

TEST_F(CToggleButtonTest, StartsOffWithTheDefaultLook) {
  EXPECT_FALSE(toggle->isOn());
  EXPECT_EQ(toggle->frame(), (NSRect{0, 0, 34, 16}));
  EXPECT_EQ(toggle->backVw()->frame(), (NSRect{0, 0, 34, 16}));
  EXPECT_EQ(knob(), (NSRect{2, 2, 12, 12}));
  EXPECT_EQ(track().cornerRadius(), 8);
  EXPECT_EQ(track().borderWidth(), 2);
  EXPECT_EQ(track().borderColor(), NSColor::lightGrayColor());
  EXPECT_EQ(track().backgroundColor(), NSColor::whiteColor());
  EXPECT_FALSE(track().masksToBounds());
  EXPECT_EQ(knobLayer().cornerRadius(), 6);
  EXPECT_EQ(knobLayer().borderWidth(), 2);
  EXPECT_EQ(knobLayer().borderColor(), NSColor::whiteColor());
  EXPECT_EQ(knobLayer().backgroundColor(), NSColor::whiteColor());
  ASSERT_TRUE(toggle->circle()->shadow());
  EXPECT_EQ(toggle->circle()->shadow()->shadowColor(), (NSColor::RGBA{0, 0, 0, 0.4}));
  EXPECT_EQ(toggle->circle()->shadow()->shadowOffset(), (platform::NSSize{0, -2}));
  EXPECT_EQ(toggle->circle()->shadow()->shadowBlurRadius(), 2);
  EXPECT_EQ(toggle->radius(), 6);
}

TEST_F(CToggleButtonTest, StatesAndPressesPutTheKnobInItsPlaces) {
  toggle->setFillColor(kBlue);
  const struct {
    bool isOn;
    bool pressed;
    NSRect knob;
    double border;
    NSColor color;
  } rows[] = {
      {false, false, {2, 2, 12, 12}, 2, NSColor::lightGrayColor()},
      {false, true, {2, 2, 15, 12}, 2, NSColor::lightGrayColor()},
      {true, false, {20, 2, 12, 12}, 8, kBlue},
      {true, true, {17, 2, 15, 12}, 8, kBlue},
  };
  for (const auto& row : rows) {
    toggle->setIsOn(row.isOn);
    if (row.pressed) press();
    desk.loop.advance(300ms);
    EXPECT_EQ(knobOnScreen(), row.knob) << row.isOn << row.pressed;
    EXPECT_EQ(track().presentation(desk.loop.now()).borderWidth, row.border);
    EXPECT_EQ(track().presentation(desk.loop.now()).borderColor, row.color);
  }
}

TEST_F(CToggleButtonTest, AReleaseFlipsPostsAndCallsBackWhenTheSlideEnds) {
  std::vector<bool> states;
  toggle->callback = [&states](bool isOn) { states.push_back(isOn); };
  listener->reaction = [this] {
    EXPECT_TRUE(toggle->isOn());
    EXPECT_TRUE(toggle->isAnimating(desk.loop.now()));
  };
  press();
  EXPECT_EQ(listener->notifications.size(), 0U);
  release();
  EXPECT_EQ(listener->notifications, (std::vector{heard(true, 44)}));
  desk.loop.advance(299ms);
  EXPECT_FALSE(toggle->acceptsTouchEvents());
  EXPECT_EQ(states, std::vector<bool>{});
  desk.loop.advance(1ms);
  EXPECT_TRUE(toggle->acceptsTouchEvents());
  EXPECT_EQ(states, std::vector<bool>{true});
}

TEST_F(CToggleButtonTest, ASecondReleaseDuringTheSlideFlipsBackFromWhereItIs) {
  int calls = 0;
  toggle->callback = [&calls](bool) { ++calls; };
  press();
  release();
  desk.loop.advance(100ms);
  EXPECT_NEAR(track().presentation(desk.loop.now()).borderWidth, 2 + 6 * kThird, 0.001);
  const NSRect reached = knobOnScreen();
  EXPECT_NEAR(reached.x, kThirdOfSlide, 0.001);
  press();
  release();
  EXPECT_EQ(knobOnScreen().x, reached.x);
  EXPECT_EQ(listener->notifications, (std::vector{heard(true, 44), heard(false, 44)}));
  desk.loop.advance(200ms);
  EXPECT_EQ(calls, 1);
  desk.loop.advance(100ms);
  EXPECT_EQ(calls, 2);
  EXPECT_FALSE(toggle->isOn());
  EXPECT_EQ(knobOnScreen(), (NSRect{2, 2, 12, 12}));
}

TEST_F(CToggleButtonTest, SettingTheStateSlidesAndCallsBackButPostsNothing) {
  int calls = 0;
  toggle->callback = [&calls](bool) { ++calls; };
  for (const bool state : {true, true, false}) {
    toggle->setIsOn(state);
    EXPECT_FALSE(toggle->acceptsTouchEvents());
    desk.loop.advance(300ms);
  }
  EXPECT_EQ(calls, 3);
  EXPECT_EQ(listener->notifications.size(), 0U);
  toggle->setIsOn(true);
  toggle.reset();
  desk.loop.advance(1s);
  EXPECT_EQ(calls, 3) << "called back after its end";
}

TEST_F(CToggleButtonTest, WithTagMinusOneTheMouseDoesNothing) {
  toggle->statetag = -1;
  press();
  release();
  EXPECT_FALSE(toggle->isOn());
  EXPECT_EQ(knob(), (NSRect{2, 2, 12, 12}));
  EXPECT_EQ(desk.loop.pendingTimers(), 0U);
  EXPECT_EQ(listener->notifications.size(), 0U);
  EXPECT_FALSE(toggle->acceptsFirstResponder());
}

TEST_F(CToggleButtonTest, WidthsAndRadiusShowAtOnce) {
  toggle->setRadius(5);
  EXPECT_EQ(track().cornerRadius(), 5);
  EXPECT_EQ(knobLayer().cornerRadius(), 3);
  EXPECT_EQ(toggle->radius(), 5);

  toggle->setToggleBorderWidth(1);
  EXPECT_EQ(knobLayer().borderWidth(), 1);
  toggle->setHasToggleBorder(false);
  EXPECT_EQ(knobLayer().borderWidth(), 0);
  toggle->setToggleBorderWidth(3);
  EXPECT_EQ(knobLayer().borderWidth(), 0);
  toggle->setHasToggleBorder(true);
  EXPECT_EQ(knobLayer().borderWidth(), 3);
}

TEST_F(CToggleButtonTest, AnOutlineWidthSetWhileOnMovesTheKnobUntilTheNextChange) {
  toggle->setIsOn(true);
  desk.loop.advance(300ms);
  toggle->setOutlineWidth(3);
  EXPECT_EQ(knobOnScreen(), (NSRect{3, 3, 10, 10}));
  EXPECT_EQ(track().borderWidth(), 8);
  EXPECT_EQ(knobLayer().cornerRadius(), 5);
  toggle->setIsOn(true);
  EXPECT_EQ(knob(), (NSRect{21, 3, 10, 10}));
  toggle->setIsOn(false);
  EXPECT_EQ(knob(), (NSRect{3, 3, 10, 10}));
  EXPECT_EQ(track().borderWidth(), 3);
}

TEST_F(CToggleButtonTest, ASwitchThatIsOnIsSetPressedAndLetGo) {
  toggle->setIsOn(true);
  desk.loop.advance(300ms);
  toggle->setFillColor(kBlue);
  toggle->setRadius(5);
  EXPECT_EQ(track().borderWidth(), 8);
  EXPECT_EQ(track().borderColor(), NSColor::lightGrayColor()) << "the outline's, on as well";
  toggle->setOutlineColor(kRed);
  press();
  desk.loop.advance(100ms);
  EXPECT_NEAR(knobOnScreen().width, 12 + 3 * kThird, 0.001);
  EXPECT_NEAR(knobOnScreen().x, 20 - 3 * kThird, 0.001) << "the right edge stays";
  release();
  EXPECT_EQ(listener->notifications, (std::vector{heard(false, 44)}));
  desk.loop.advance(300ms);
  EXPECT_EQ(track().borderColor(), kRed);
}

TEST_F(CToggleButtonTest, AttributesAreSetByKeyAndRefusedWhenOfAnotherType) {
  const std::array<const char*, 3> rows[] = {
      {"isOn", "true", "1"},
      {"hasToggleBorder", "false", "no"},
      {"outlineWidth", "1.5", "thin"},
      {"toggleBorderWidth", "1", ""},
      {"radius", "4", "nan"},
      {"outlineColor", "#ff0000", "red"},
      {"fillColor", "#00ff00", "#0f0"},
      {"toggleColor", "labelColor", "label"},
      {"backColor", "#0000ff80", "0000ff"},
  };
  for (const auto& [key, good, bad] : rows) {
    EXPECT_FALSE(toggle->setValueForKey(key, bad)) << key;
    EXPECT_TRUE(toggle->setValueForKey(key, good)) << key;
  }
  EXPECT_TRUE(toggle->isOn());
  EXPECT_EQ(toggle->outlineWidth(), 1.5);
  EXPECT_EQ(toggle->outlineColor(), kRed);
  EXPECT_EQ(track().borderColor(), (NSColor::RGBA{0, 1, 0, 1})) << "the fill's, while on";
  EXPECT_EQ(knobLayer().backgroundColor(), platform::NSSystemColor::Label);
  EXPECT_NEAR(track().backgroundColor().rgba()->alpha, 0.5, 0.01);
  EXPECT_FALSE(toggle->setValueForKey("statetag", "11"));
}

}  // namespace
}  // namespace controls
