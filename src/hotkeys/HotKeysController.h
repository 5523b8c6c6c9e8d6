#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/carbon/CarbonEvents.h"
#include "platform/foundation/SmallValues.h"

namespace hotkeys {

class HotKey;

/// The registry's entry for one hot key.
struct HotKeyBox {
  platform::NSUUID identifier;
  /// Empty once the hot key is gone.
  std::weak_ptr<HotKey> hotKey;
  /// The box's number, from 1 on; none is given twice in a process.
  std::uint32_t carbonHotKeyID = 0;
  /// Empty when the desktop refused the combination, at once or later.
  platform::EventHotKeyRef carbonEventHotKey = platform::EventHotKeyRef::None;
};

/// The registry of hot keys: binds each to the desktop's hot-key service, and runs the handlers
/// when the service reports a press or a release. It owns its boxes, not the hot keys. Its state
/// belongs to the Runtime. Main thread only.
class HotKeysController {
 public:
  using Boxes = std::map<std::uint32_t, HotKeyBox>;

  HotKeysController() = delete;

  /// "Vexo": the hot keys of this program.
  static constexpr std::uint32_t kSignature = platform::fourCharCode("Vexo");

  /// Called when the desktop refuses a combination: tells the user to choose another one. Must not
  /// wait for the answer. Empty: nobody is told; nor where users bind keys themselves, since none
  /// is refused there.
  static void setUnavailableHandler(std::function<void()> handler);

  /// Gives the hot key a box with the next number and asks the desktop for its combination. One
  /// that has a box already is left as it is, even when the desktop refused it. A refusal is not
  /// returned: the hot key keeps its box and hears of no event, and the user is told.
  static void registerHotKey(const std::shared_ptr<HotKey>& hotKey);
  /// Gives the combination back and forgets the hot key. Without a box: does nothing.
  static void unregisterHotKey(const HotKey& hotKey);
  /// Null when there is none any more; a box that is left of it goes.
  [[nodiscard]] static std::shared_ptr<HotKey> hotKeyForId(std::uint32_t id);
  [[nodiscard]] static const Boxes& boxesById();

 private:
  struct State;
  [[nodiscard]] static State& state();
  static void installEventHandler();
  static void handleAssignment(platform::EventHotKeyID id, const std::optional<std::string>& keys);
  static platform::OSStatus handleEvent(platform::EventRef event, void* userData);
};

}  // namespace hotkeys
