#include <chrono>

#include "hotkeys/HotKeysTest.h"
#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/NSRunLoop.h"

namespace hotkeys {
namespace {

using namespace std::chrono_literals;
using namespace platform;

class HotKeyEventTest : public HotKeysTest {
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

TEST_F(HotKeyEventTest, APausedOneHearsNothingEvenWhenItIsRegisteredByHand) {
  const auto hotKey = make(kFirst, "first");
  hotKey->setPaused(true);
  HotKeysController::registerHotKey(hotKey);
  desk.keys.press(kFirst);
  EXPECT_EQ(send(2, kEventHotKeyPressed), eventNotHandledErr);
  EXPECT_EQ(send(2, kEventHotKeyReleased), eventNotHandledErr);
  EXPECT_EQ(events, Lines{});
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

TEST_F(HotKeyEventTest, PressesDuringASleepAreKeptInOrderAndNoneIsLost) {
  const auto first = make(kFirst, "first");
  auto second = make(kSecond, "second");
  DispatchQueue::mainQueue().async([this] {
    desk.loop.at(100ms, [this] { desk.keys.press(kFirst); });
    desk.loop.at(200ms, [this] { desk.keys.press(kSecond); });
    desk.loop.at(300ms, [this] { desk.keys.release(kFirst); });
    NSRunLoop::mainRunLoop().sleep(1);
    EXPECT_EQ(events, Lines{});
  });
  desk.loop.settle();
  EXPECT_EQ(events, (Lines{"first down", "second down", "first up"}));

  // One that is gone when its turn comes hears nothing any more.
  events.clear();
  DispatchQueue::mainQueue().async([this, &second] {
    desk.loop.at(100ms, [this] { desk.keys.press(kSecond); });
    NSRunLoop::mainRunLoop().sleep(1);
    second.reset();
  });
  desk.loop.settle();
  EXPECT_EQ(events, Lines{});
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
