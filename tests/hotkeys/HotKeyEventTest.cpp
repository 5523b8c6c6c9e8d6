#include <chrono>

#include "hotkeys/HotKeysTest.h"
#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/NSRunLoop.h"

namespace hotkeys {
namespace {

using namespace std::chrono_literals;
using platform::CarbonEvent;
using platform::eventNotHandledErr;
using platform::kEventHotKeyPressed;
using platform::kEventHotKeyReleased;
using platform::noErr;
using platform::OSStatus;

class HotKeyEventTest : public HotKeysTest {
 protected:
  static OSStatus send(std::uint32_t id, std::uint32_t kind, std::uint32_t signature = 0x5665786F) {
    const CarbonEvent event{{platform::kEventClassKeyboard, kind}, {signature, id}};
    return platform::SendEventToEventTarget(&event, platform::GetEventDispatcherTarget());
  }
};

TEST_F(HotKeyEventTest, PressAndReleaseRunTheHandlersOfTheirHotKeyAlone) {
  const auto first = make(kFirst, "first");
  const auto second = make(kSecond, "second");
  desk.keys.press(kSecond);
  desk.keys.release(kSecond);
  desk.keys.press(kFirst);
  desk.keys.press({platform::kVK_ANSI_J, platform::controlKey});
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
  EXPECT_EQ(platform::SendEventToEventTarget(nullptr, platform::GetEventDispatcherTarget()),
            eventNotHandledErr);
  EXPECT_EQ(events.size(), 3U);
}

TEST_F(HotKeyEventTest, EventsOfWhatIsGoneOrPausedAreNotAnswered) {
  auto first = make(kFirst, "first");
  const auto second = make(kSecond, "second");
  first.reset();
  second->setPaused(true);
  EXPECT_EQ(send(1, kEventHotKeyPressed), eventNotHandledErr);
  EXPECT_EQ(send(2, kEventHotKeyPressed), eventNotHandledErr);
  EXPECT_TRUE(HotKeysController::boxesById().empty());
  second->setPaused(false);
  EXPECT_EQ(send(2, kEventHotKeyPressed), eventNotHandledErr);
  EXPECT_EQ(send(3, kEventHotKeyPressed), noErr);
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
}

TEST_F(HotKeyEventTest, PressesDuringASleepAreKeptInOrderAndNoneIsLost) {
  const auto first = make(kFirst, "first");
  auto second = make(kSecond, "second");
  platform::DispatchQueue::mainQueue().async([this] {
    desk.loop.at(100ms, [this] { desk.keys.press(kFirst); });
    desk.loop.at(200ms, [this] { desk.keys.press(kSecond); });
    desk.loop.at(300ms, [this] { desk.keys.release(kFirst); });
    platform::NSRunLoop::mainRunLoop().sleep(1);
    EXPECT_EQ(events, Lines{});
  });
  desk.loop.settle();
  EXPECT_EQ(events, (Lines{"first down", "second down", "first up"}));

  // One that is gone when its turn comes hears nothing any more.
  events.clear();
  platform::DispatchQueue::mainQueue().async([this, &second] {
    desk.loop.at(100ms, [this] { desk.keys.press(kSecond); });
    platform::NSRunLoop::mainRunLoop().sleep(1);
    second.reset();
  });
  desk.loop.settle();
  EXPECT_EQ(events, Lines{});
}

TEST_F(HotKeyEventTest, AnEventTellsItsHotKeyAndNothingElse) {
  const CarbonEvent event{{platform::kEventClassKeyboard, kEventHotKeyPressed}, {7, 9}};
  platform::EventHotKeyID id;
  std::uint32_t type = 0;
  std::size_t size = 0;
  const auto read = [&](std::uint32_t name, std::uint32_t wanted, std::size_t room) {
    return platform::GetEventParameter(&event, name, wanted, &type, room, &size, &id);
  };
  EXPECT_EQ(read(platform::kEventParamDirectObject, platform::typeEventHotKeyID, 4),
            platform::paramErr);
  EXPECT_EQ(read(platform::kEventParamDirectObject, platform::fourCharCode("long"), 8),
            platform::eventParameterNotFoundErr);
  EXPECT_EQ(read(platform::fourCharCode("kchr"), platform::typeEventHotKeyID, 8),
            platform::eventParameterNotFoundErr);
  EXPECT_EQ(id, platform::EventHotKeyID{});
  EXPECT_EQ(read(platform::kEventParamDirectObject, platform::typeEventHotKeyID, 8), noErr);
  EXPECT_EQ(id, (platform::EventHotKeyID{7, 9}));
  EXPECT_EQ(type, platform::typeEventHotKeyID);
  EXPECT_EQ(size, 8U);
}

TEST_F(HotKeyEventTest, AHandlerOfAnotherPartyGetsWhatIsNotOurs) {
  const auto hotKey = make(kFirst, "first");
  static constexpr std::array kTypes{
      platform::EventTypeSpec{platform::kEventClassKeyboard, kEventHotKeyPressed}};
  int asked = 0;
  platform::EventHandlerRef installed = platform::EventHandlerRef::None;
  ASSERT_EQ(platform::InstallEventHandler(
                platform::GetEventDispatcherTarget(),
                [](platform::EventRef event, void* count) -> OSStatus {
                  ++*static_cast<int*>(count);
                  return event->hotKeyID.signature == 1 ? noErr : eventNotHandledErr;
                },
                kTypes, &asked, installed),
            noErr);
  EXPECT_NE(installed, platform::EventHandlerRef::None);
  EXPECT_EQ(send(1, kEventHotKeyPressed, 1), noErr);
  EXPECT_EQ(send(1, kEventHotKeyPressed), noErr);
  EXPECT_EQ(send(1, kEventHotKeyReleased), noErr);
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(events, (Lines{"first down", "first up"}));
  EXPECT_NE(platform::UnregisterEventHotKey(platform::EventHotKeyRef::None), noErr);
}

}  // namespace
}  // namespace hotkeys
