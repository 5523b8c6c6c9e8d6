#include "platform/carbon/CarbonEvents.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <vector>

#include "platform/Runtime.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {
namespace {

port::HotKeys* service() {
  return Runtime::current().desktop().hotKeys;
}

/// The application's hot keys and handlers, kept for the life of the process; it gives the hot keys
/// that are left back to the desktop.
class EventDispatcher final : public port::HotKeysClient {
 public:
  static EventDispatcher& shared() { return *Runtime::current().instance<EventDispatcher>(); }

  EventDispatcher() = default;
  EventDispatcher(const EventDispatcher&) = delete;
  EventDispatcher& operator=(const EventDispatcher&) = delete;
  ~EventDispatcher() override {
    if (service() == nullptr) return;
    for (const auto& [number, id] : hotKeys) service()->unregisterHotKey(number);
    service()->setClient(nullptr);
  }

  void hotKeyPressed(port::HotKeyNumber number) override { arrived(number, kEventHotKeyPressed); }
  void hotKeyReleased(port::HotKeyNumber number) override { arrived(number, kEventHotKeyReleased); }
  void hotKeyAssigned(port::HotKeyNumber number, const std::optional<std::string>& keys) override {
    const auto found = hotKeys.find(number);
    if (found == hotKeys.end()) return;
    const EventHotKeyID id = found->second;
    if (!keys) hotKeys.erase(found);
    NSRunLoop::mainRunLoop().deliver([this, id, keys] {
      if (assigned != nullptr) assigned(id, keys);
    });
  }

  struct Installed {
    EventHandler handler;
    std::vector<EventTypeSpec> types;
    void* userData;
  };
  std::map<port::HotKeyNumber, EventHotKeyID> hotKeys;
  std::vector<Installed> handlers;
  HotKeyAssignmentHandler assigned = nullptr;

 private:
  void arrived(port::HotKeyNumber number, std::uint32_t kind) const {
    const auto found = hotKeys.find(number);
    if (found == hotKeys.end()) return;
    const CarbonEvent event{{kEventClassKeyboard, kind}, found->second};
    NSRunLoop::mainRunLoop().deliver(
        [event] { SendEventToEventTarget(&event, GetEventDispatcherTarget()); });
  }
};

}  // namespace

EventTargetRef GetEventDispatcherTarget() {
  return EventTargetRef::Dispatcher;
}

OSStatus RegisterEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID hotKeyID,
                             EventTargetRef, std::uint32_t, EventHotKeyRef& outRef,
                             const std::string& purpose) {
  if (service() == nullptr) return eventHotKeyInvalidErr;
  EventDispatcher& dispatcher = EventDispatcher::shared();
  service()->setClient(&dispatcher);
  const OSStatus status = service()->registerHotKey(hotKeyID.id, keyCode, modifiers, purpose);
  if (status != noErr) return status;
  dispatcher.hotKeys.emplace(hotKeyID.id, hotKeyID);
  outRef = EventHotKeyRef{hotKeyID.id};
  return noErr;
}

void SetSymbolicHotKeysEnabled(bool enabled) {
  Runtime::current().desktop().windows.setDesktopKeysEnabled(enabled);
}

bool IsReservedHotKey(std::uint32_t keyCode, std::uint32_t modifiers) {
  return service() != nullptr && service()->isReserved(keyCode, modifiers);
}

std::optional<std::string> OwnHotKeyBinding(std::uint32_t keyCode, std::uint32_t modifiers,
                                            std::string_view action) {
  if (!AreHotKeysBoundByUser()) return std::nullopt;
  return Runtime::current().desktop().ownKeyBindings->bindingOf(keyCode, modifiers, action);
}

bool AreHotKeysBoundByUser() {
  return service() == nullptr && Runtime::current().desktop().ownKeyBindings != nullptr;
}

void SetHotKeyAssignmentHandler(HotKeyAssignmentHandler handler) {
  EventDispatcher::shared().assigned = handler;
}

OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey) {
  auto& hotKeys = EventDispatcher::shared().hotKeys;
  const auto found = hotKeys.find(static_cast<port::HotKeyNumber>(hotKey));
  if (found == hotKeys.end()) return paramErr;
  if (service() != nullptr) service()->unregisterHotKey(found->first);
  hotKeys.erase(found);
  return noErr;
}

OSStatus InstallEventHandler(EventTargetRef, EventHandler handler,
                             std::span<const EventTypeSpec> types, void* userData,
                             EventHandlerRef& outRef) {
  auto& handlers = EventDispatcher::shared().handlers;
  handlers.push_back({handler, {types.begin(), types.end()}, userData});
  outRef = EventHandlerRef{static_cast<std::uint32_t>(handlers.size())};
  return noErr;
}

OSStatus SendEventToEventTarget(EventRef event, EventTargetRef) {
  const auto& handlers = EventDispatcher::shared().handlers;
  for (std::size_t i = handlers.size(); i > 0; --i) {
    const auto& [handler, types, userData] = handlers[i - 1];
    if (event != nullptr && std::ranges::find(types, event->type) == types.end()) continue;
    const OSStatus status = handler(event, userData);
    if (status != eventNotHandledErr) return status;
  }
  return eventNotHandledErr;
}

std::uint32_t GetEventKind(EventRef event) {
  return event == nullptr ? 0 : event->type.eventKind;
}

OSStatus GetEventParameter(EventRef event, std::uint32_t name, std::uint32_t type,
                           std::uint32_t* outActualType, std::size_t bufferSize,
                           std::size_t* outActualSize, void* outData) {
  if (event == nullptr || name != kEventParamDirectObject || type != typeEventHotKeyID) {
    return eventParameterNotFoundErr;
  }
  if (bufferSize < sizeof event->hotKeyID) return paramErr;
  std::memcpy(outData, &event->hotKeyID, sizeof event->hotKeyID);
  if (outActualType != nullptr) *outActualType = typeEventHotKeyID;
  if (outActualSize != nullptr) *outActualSize = sizeof event->hotKeyID;
  return noErr;
}

}  // namespace platform
