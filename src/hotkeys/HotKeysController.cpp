#include "hotkeys/HotKeysController.h"

#include <algorithm>
#include <array>
#include <utility>

#include "hotkeys/HotKey.h"
#include "platform/Runtime.h"

namespace hotkeys {

using platform::EventHotKeyID;
using platform::EventHotKeyRef;
using platform::eventNotHandledErr;
using platform::noErr;
using platform::OSStatus;

struct HotKeysController::State {
  Boxes boxesById;
  std::uint32_t lastHotKeyId = 0;
  platform::EventHandlerRef eventHandlerRef = platform::EventHandlerRef::None;
  std::function<void()> unavailable;

  [[nodiscard]] Boxes::iterator find(const platform::NSUUID& identifier) {
    return std::ranges::find_if(boxesById, [&identifier](const Boxes::value_type& entry) {
      return entry.second.identifier == identifier;
    });
  }
};

HotKeysController::State& HotKeysController::state() {
  return *platform::Runtime::current().instance<State>();
}

const HotKeysController::Boxes& HotKeysController::boxesById() {
  return state().boxesById;
}

void HotKeysController::setUnavailableHandler(std::function<void()> handler) {
  state().unavailable = std::move(handler);
}

void HotKeysController::registerHotKey(const std::shared_ptr<HotKey>& hotKey) {
  State& own = state();
  if (own.find(hotKey->identifier()) != own.boxesById.end()) return;
  const std::uint32_t id = ++own.lastHotKeyId;
  HotKeyBox& box = own.boxesById[id];
  box = {.identifier = hotKey->identifier(), .hotKey = hotKey, .carbonHotKeyID = id};
  hotKey->assignedKeys.clear();

  platform::SetHotKeyAssignmentHandler(&HotKeysController::handleAssignment);
  EventHotKeyRef reference = EventHotKeyRef::None;
  const OSStatus status = platform::RegisterEventHotKey(
      hotKey->keyCombo().carbonKeyCode, hotKey->keyCombo().carbonModifiers, {kSignature, id},
      platform::GetEventDispatcherTarget(), 0, reference, hotKey->purpose());
  if (status == noErr && reference != EventHotKeyRef::None) {
    box.carbonEventHotKey = reference;
    installEventHandler();
    return;
  }
  if (own.unavailable && !platform::AreHotKeysBoundByUser()) own.unavailable();
}

void HotKeysController::unregisterHotKey(const HotKey& hotKey) {
  State& own = state();
  const auto found = own.find(hotKey.identifier());
  if (found == own.boxesById.end()) return;
  platform::UnregisterEventHotKey(found->second.carbonEventHotKey);
  own.boxesById.erase(found);
}

std::shared_ptr<HotKey> HotKeysController::hotKeyForId(std::uint32_t id) {
  Boxes& boxes = state().boxesById;
  const auto found = boxes.find(id);
  if (found == boxes.end()) return nullptr;
  std::shared_ptr<HotKey> hotKey = found->second.hotKey.lock();
  if (!hotKey) boxes.erase(found);
  return hotKey;
}

void HotKeysController::installEventHandler() {
  static constexpr std::array kTypes{
      platform::EventTypeSpec{platform::kEventClassKeyboard, platform::kEventHotKeyPressed},
      platform::EventTypeSpec{platform::kEventClassKeyboard, platform::kEventHotKeyReleased},
  };
  State& own = state();
  if (own.lastHotKeyId == 0 || own.eventHandlerRef != platform::EventHandlerRef::None) return;
  static_cast<void>(platform::InstallEventHandler(platform::GetEventDispatcherTarget(),
                                                  &HotKeysController::handleEvent, kTypes, nullptr,
                                                  own.eventHandlerRef));
}

void HotKeysController::handleAssignment(EventHotKeyID id, const std::optional<std::string>& keys) {
  const std::shared_ptr<HotKey> hotKey = id.signature == kSignature ? hotKeyForId(id.id) : nullptr;
  if (!hotKey) return;
  hotKey->assignedKeys = keys.value_or("");
  if (!keys) state().boxesById.at(id.id).carbonEventHotKey = EventHotKeyRef::None;
  if (hotKey->assignmentHandler) hotKey->assignmentHandler();
  if (!keys && state().unavailable) state().unavailable();
}

OSStatus HotKeysController::handleEvent(platform::EventRef event, void*) {
  if (event == nullptr) return eventNotHandledErr;
  EventHotKeyID id;
  const OSStatus status =
      platform::GetEventParameter(event, platform::kEventParamDirectObject,
                                  platform::typeEventHotKeyID, nullptr, sizeof id, nullptr, &id);
  if (status != noErr) return status;
  if (id.signature != kSignature) return eventNotHandledErr;
  // Held for as long as its handler runs, which may let go of it.
  const std::shared_ptr<HotKey> hotKey = hotKeyForId(id.id);
  if (!hotKey) return eventNotHandledErr;

  const std::uint32_t kind = platform::GetEventKind(event);
  HotKey::Handler handler;
  if (kind == platform::kEventHotKeyPressed) handler = hotKey->keyDownHandler;
  if (kind == platform::kEventHotKeyReleased) handler = hotKey->keyUpHandler;
  if (!handler || hotKey->isPaused()) return eventNotHandledErr;
  handler();
  return noErr;
}

}  // namespace hotkeys
