#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "desktop/simulated/SimulatedDesktop.h"
#include "hotkeys/HotKey.h"
#include "hotkeys/HotKeysController.h"
#include "platform/Runtime.h"
#include "platform/carbon/KeyCodes.h"

namespace hotkeys {
namespace {

using namespace platform;

/// The registry on a simulated desktop. Fails a test that leaves a hot key behind.
class HotKeyTest : public ::testing::Test {
 protected:
  using Combination = simulated::SimulatedHotKeys::Combination;
  using Combinations = std::set<Combination>;
  using Lines = std::vector<std::string>;
  using Ids = std::vector<std::uint32_t>;

  static constexpr Combination kFirst{platform::kVK_ANSI_K, platform::controlKey};
  static constexpr Combination kSecond{platform::kVK_F5, platform::cmdKey};

  HotKeyTest() {
    HotKeysController::setUnavailableHandler([this] { ++refusals; });
  }
  ~HotKeyTest() override = default;
  void TearDown() override {
    runtime_.reset();
    EXPECT_EQ(desk.leftBehind(), Lines{});
  }

  /// A hot key that notes its events as `name` and "down" or "up".
  [[nodiscard]] std::shared_ptr<HotKey> make(Combination combination, const std::string& name) {
    return HotKey::make(combination.keyCode, combination.modifiers, note(name + " down"),
                        note(name + " up"));
  }
  [[nodiscard]] HotKey::Handler note(std::string what) {
    return [this, what = std::move(what)] { events.push_back(what); };
  }
  /// The ids that have a box, in order.
  static Ids ids() {
    Ids found;
    for (const auto& [id, box] : HotKeysController::boxesById()) found.push_back(id);
    return found;
  }

  simulated::SimulatedDesktop desk;
  int refusals = 0;
  Lines events;

 private:
  std::unique_ptr<platform::Runtime> runtime_ = std::make_unique<platform::Runtime>(desk.desktop);
};

TEST_F(HotKeyTest, IsRegisteredOnceForAsLongAsSomebodyOwnsIt) {
  auto hotKey = HotKey::make(Key::K, {ModifierFlags::Bits::Control});
  HotKeysController::registerHotKey(hotKey);
  hotKey->setPaused(false);
  EXPECT_EQ(ids(), Ids{1});
  EXPECT_EQ(desk.log.calls("hotKeys").size(), 1U);
  const auto second = hotKey;
  hotKey.reset();
  EXPECT_EQ(desk.keys.held(), Combinations{kFirst});
  EXPECT_EQ(HotKeysController::hotKeyForId(1), second);
}

TEST_F(HotKeyTest, NumbersAreNeverGivenTwice) {
  auto first = make(kFirst, "first");
  const auto second = make(kSecond, "second");
  EXPECT_EQ(ids(), (Ids{1, 2}));
  EXPECT_NE(first->identifier(), second->identifier());
  first.reset();
  EXPECT_EQ(ids(), Ids{2});
  const auto third = make(kFirst, "third");
  EXPECT_EQ(ids(), (Ids{2, 3}));
  EXPECT_EQ(HotKeysController::hotKeyForId(1), nullptr);
  EXPECT_EQ(HotKeysController::hotKeyForId(3), third);
}

TEST_F(HotKeyTest, ARefusedCombinationIsToldOnceAndKeepsItsBox) {
  desk.keys.heldByOthers.insert(kFirst);
  auto hotKey = make(kFirst, "first");
  EXPECT_EQ(refusals, 1);
  EXPECT_EQ(ids(), Ids{1});
  EXPECT_EQ(HotKeysController::hotKeyForId(1), hotKey);

  // Free again: asking again does not help, pausing between does.
  desk.keys.heldByOthers.clear();
  hotKey->setPaused(false);
  EXPECT_EQ(desk.keys.held(), Combinations{});
  EXPECT_EQ(refusals, 1);
  hotKey->setPaused(true);
  hotKey->setPaused(true);
  EXPECT_TRUE(hotKey->isPaused());
  EXPECT_EQ(ids(), Ids{});
  hotKey->setPaused(false);
  EXPECT_EQ(desk.keys.held(), Combinations{kFirst});
  EXPECT_EQ(ids(), Ids{2});
  hotKey->setPaused(true);
  EXPECT_EQ(desk.keys.held(), Combinations{}) << "given back";
}

TEST_F(HotKeyTest, ADesktopWithoutHotKeysRefusesThemAll) {
  desk.desktop.hotKeys = nullptr;
  const auto hotKey = make(kFirst, "first");
  EXPECT_EQ(refusals, 1);
  HotKeysController::setUnavailableHandler(nullptr);
  const auto second = make(kSecond, "second");
  EXPECT_EQ(ids(), (Ids{1, 2}));
}

class HotKeyEventTest : public HotKeyTest {
 protected:
  static OSStatus send(std::uint32_t id, std::uint32_t kind, std::uint32_t signature = 0x5665786F) {
    const CarbonEvent event{{kEventClassKeyboard, kind}, {signature, id}};
    return SendEventToEventTarget(&event, GetEventDispatcherTarget());
  }
};

TEST_F(HotKeyEventTest, PressAndReleaseRunTheHandlersOfTheirHotKeyAlone) {
  const auto first = make(kFirst, "first");
  const auto second = make(kSecond, "second");
  desk.keys.press(kSecond);
  desk.keys.release(kSecond);
  desk.keys.press(kFirst);
  desk.keys.press({kVK_ANSI_J, controlKey});
  EXPECT_EQ(events, (Lines{"second down", "second up", "first down"}));
  EXPECT_EQ(refusals, 0);
}

TEST_F(HotKeyEventTest, AnsweredIsOnlyWhatRanAHandler) {
  const auto both = make(kFirst, "both");
  const auto down = HotKey::make(kSecond.keyCode, kSecond.modifiers, note("down"));
  EXPECT_EQ(send(1, kEventHotKeyPressed), noErr);
  EXPECT_EQ(send(1, kEventHotKeyReleased), noErr);
  EXPECT_EQ(send(2, kEventHotKeyPressed), noErr);
  EXPECT_EQ(events, (Lines{"both down", "both up", "down"}));

  EXPECT_EQ(send(2, kEventHotKeyReleased), eventNotHandledErr);
  EXPECT_EQ(send(1, 7), eventNotHandledErr);
  EXPECT_EQ(send(3, kEventHotKeyPressed), eventNotHandledErr);
  EXPECT_EQ(send(0, kEventHotKeyPressed), eventNotHandledErr);
  EXPECT_EQ(send(1, kEventHotKeyPressed, 0x56657870), eventNotHandledErr);
  EXPECT_EQ(SendEventToEventTarget(nullptr, GetEventDispatcherTarget()), eventNotHandledErr);
  EXPECT_EQ(events.size(), 3U);
}

TEST_F(HotKeyEventTest, EventsOfWhatIsGoneOrPausedAreNotAnswered) {
  auto first = make(kFirst, "first");
  const auto second = make(kSecond, "second");
  const EventHotKeyRef reference = HotKeysController::boxesById().at(1).carbonEventHotKey;
  first.reset();
  EXPECT_EQ(UnregisterEventHotKey(reference), paramErr) << "withdrawn already";
  second->setPaused(true);
  EXPECT_EQ(send(1, kEventHotKeyPressed), eventNotHandledErr);
  EXPECT_EQ(send(2, kEventHotKeyPressed), eventNotHandledErr);
  EXPECT_TRUE(HotKeysController::boxesById().empty());
  HotKeysController::registerHotKey(second);
  EXPECT_EQ(send(3, kEventHotKeyPressed), eventNotHandledErr) << "registered, but paused";
  second->setPaused(true);
  second->setPaused(false);
  EXPECT_EQ(send(3, kEventHotKeyPressed), eventNotHandledErr);
  EXPECT_EQ(send(4, kEventHotKeyPressed), noErr);
  EXPECT_EQ(events, Lines{"second down"});
}

TEST_F(HotKeyEventTest, WithoutAnAcceptedCombinationNobodyListens) {
  desk.keys.impossible.insert(kFirst);
  const auto refused = make(kFirst, "refused");
  EXPECT_EQ(send(1, kEventHotKeyPressed), eventNotHandledErr);
  const auto accepted = make(kSecond, "accepted");
  // Now there is a listener, and the refused one is a hot key like any other to it.
  EXPECT_EQ(send(1, kEventHotKeyPressed), noErr);
  EXPECT_EQ(events, Lines{"refused down"});
}

TEST_F(HotKeyEventTest, AHandlerMayLetGoOfItsHotKeyAndMakeAnother) {
  std::shared_ptr<HotKey> hotKey;
  hotKey = HotKey::make(kFirst.keyCode, kFirst.modifiers, [this, &hotKey] {
    hotKey.reset();
    events.emplace_back("replaced");
    hotKey = make(kFirst, "next");
  });
  desk.keys.press(kFirst);
  desk.keys.release(kFirst);
  desk.keys.press(kFirst);
  // While the handler ran, its own hot key still held the combination.
  EXPECT_EQ(refusals, 1);
  EXPECT_EQ(events, Lines{"replaced"});
  EXPECT_EQ(desk.keys.held(), Combinations{});
}

TEST_F(HotKeyEventTest, AHandlerOfAnotherPartyGetsWhatIsNotOurs) {
  const auto hotKey = make(kFirst, "first");
  static constexpr std::array kTypes{EventTypeSpec{kEventClassKeyboard, kEventHotKeyPressed}};
  int asked = 0;
  EventHandlerRef installed = EventHandlerRef::None;
  ASSERT_EQ(InstallEventHandler(
                GetEventDispatcherTarget(),
                [](EventRef event, void* count) -> OSStatus {
                  ++*static_cast<int*>(count);
                  return event->hotKeyID.signature == 1 ? noErr : eventNotHandledErr;
                },
                kTypes, &asked, installed),
            noErr);
  EXPECT_NE(installed, EventHandlerRef::None);
  const auto second = make(kSecond, "second");  // for which no second handler is installed
  EXPECT_EQ(send(1, kEventHotKeyPressed, 1), noErr);
  EXPECT_EQ(send(1, kEventHotKeyPressed), noErr);
  EXPECT_EQ(send(1, kEventHotKeyReleased), noErr);
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(events, (Lines{"first down", "first up"}));
  EXPECT_EQ(UnregisterEventHotKey(EventHotKeyRef::None), paramErr);
}

}  // namespace
}  // namespace hotkeys
