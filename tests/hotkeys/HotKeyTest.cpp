#include "hotkeys/HotKey.h"

#include "hotkeys/HotKeysController.h"
#include "platform/carbon/KeyCodes.h"
#include "support/DeskTest.h"

namespace hotkeys {
namespace {

using namespace platform;

/// The registry on a simulated desktop.
class HotKeyTest : public tests::DeskTest {
 protected:
  using Combination = simulated::SimulatedHotKeys::Combination;
  using Combinations = std::set<Combination>;
  using Lines = std::vector<std::string>;
  using Ids = std::vector<std::uint32_t>;

  static constexpr Combination kFirst{kVK_ANSI_K, controlKey};
  static constexpr Combination kSecond{kVK_F5, cmdKey};

  HotKeyTest() {
    HotKeysController::setUnavailableHandler([this] { ++refusals; });
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
  static OSStatus send(std::uint32_t id, std::uint32_t kind, std::uint32_t signature = 0x5665786F) {
    const CarbonEvent event{{kEventClassKeyboard, kind}, {signature, id}};
    return SendEventToEventTarget(&event, GetEventDispatcherTarget());
  }

  int refusals = 0;
  Lines events;
};

TEST_F(HotKeyTest, IsRegisteredOnceUnderANumberThatIsNeverGivenAgain) {
  auto first = HotKey::make(Key::K, {ModifierFlags::Bits::Control});
  HotKeysController::registerHotKey(first);
  first->setPaused(false);
  const auto second = make(kSecond, "second");
  EXPECT_EQ(desk.log.calls("hotKeys").size(), 2U);
  EXPECT_EQ(ids(), (Ids{1, 2}));
  EXPECT_EQ(HotKeysController::hotKeyForId(1), first);
  first.reset();
  EXPECT_EQ(HotKeysController::hotKeyForId(1), nullptr);
  const auto third = make(kFirst, "third");
  EXPECT_EQ(ids(), (Ids{2, 3}));
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

TEST_F(HotKeyTest, AnsweredIsOnlyWhatRanAHandler) {
  const auto both = make(kFirst, "both");
  const auto down = HotKey::make(kSecond.keyCode, kSecond.modifiers, note("down"));
  desk.keys.press(kFirst);
  desk.keys.release(kFirst);
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

TEST_F(HotKeyTest, EventsOfWhatIsGoneOrPausedAreNotAnswered) {
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

TEST_F(HotKeyTest, AHandlerMayLetGoOfItsHotKeyAndMakeAnother) {
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

TEST_F(HotKeyTest, AHandlerOfAnotherPartyIsAskedFirstAndOfItsKindAlone) {
  const auto hotKey = make(kFirst, "first");
  static constexpr std::array kTypes{EventTypeSpec{kEventClassKeyboard, kEventHotKeyPressed}};
  int asked = 0;
  const auto handler = [](EventRef event, void* count) -> OSStatus {
    ++*static_cast<int*>(count);
    return event->hotKeyID.signature == 1 ? noErr : eventNotHandledErr;
  };
  EventHandlerRef installed = EventHandlerRef::None;
  EXPECT_EQ(InstallEventHandler(GetEventDispatcherTarget(), handler, kTypes, &asked, installed),
            noErr);
  const auto second = make(kSecond, "second");  // for which no second handler is installed
  EXPECT_EQ(send(1, kEventHotKeyPressed, 1), noErr);
  EXPECT_EQ(send(1, kEventHotKeyPressed), noErr);
  EXPECT_EQ(send(1, kEventHotKeyReleased), noErr);
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(events, (Lines{"first down", "first up"}));
}

}  // namespace
}  // namespace hotkeys
