#include "platform/carbon/CarbonEvents.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
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
    for (const auto& [number, id] : hotKeys_) service()->unregisterHotKey(number);
    service()->setClient(nullptr);
  }

  OSStatus registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id,
                          EventHotKeyRef& outRef) {
    if (service() == nullptr) return eventHotKeyInvalidErr;
    service()->setClient(this);
    const OSStatus status = service()->registerHotKey(id.id, keyCode, modifiers);
    if (status != noErr) return status;
    hotKeys_.emplace(id.id, id);
    outRef = EventHotKeyRef{id.id};
    return noErr;
  }

  OSStatus unregisterHotKey(EventHotKeyRef hotKey) {
    const auto found = hotKeys_.find(static_cast<port::HotKeyNumber>(hotKey));
    if (found == hotKeys_.end()) return paramErr;
    if (service() != nullptr) service()->unregisterHotKey(found->first);
    hotKeys_.erase(found);
    return noErr;
  }

  void setAssignmentHandler(HotKeyAssignmentHandler handler) { assigned_ = handler; }

  EventHandlerRef install(EventHandler handler, std::span<const EventTypeSpec> types,
                          void* userData) {
    handlers_.push_back({handler, {types.begin(), types.end()}, userData});
    return EventHandlerRef{static_cast<std::uint32_t>(handlers_.size())};
  }

  OSStatus send(EventRef event) const {
    for (std::size_t i = handlers_.size(); i > 0; --i) {
      const Installed& installed = handlers_[i - 1];
      if (event != nullptr &&
          std::ranges::find(installed.types, event->type) == installed.types.end()) {
        continue;
      }
      const OSStatus status = installed.handler(event, installed.userData);
      if (status != eventNotHandledErr) return status;
    }
    return eventNotHandledErr;
  }

  void hotKeyPressed(port::HotKeyNumber number) override { arrived(number, kEventHotKeyPressed); }
  void hotKeyReleased(port::HotKeyNumber number) override { arrived(number, kEventHotKeyReleased); }
  void hotKeyAssigned(port::HotKeyNumber number, const std::optional<std::string>& keys) override {
    const auto found = hotKeys_.find(number);
    if (found == hotKeys_.end()) return;
    const EventHotKeyID id = found->second;
    if (!keys) hotKeys_.erase(found);
    NSRunLoop::mainRunLoop().deliver([this, id, keys] {
      if (assigned_ != nullptr) assigned_(id, keys);
    });
  }

 private:
  struct Installed {
    EventHandler handler;
    std::vector<EventTypeSpec> types;
    void* userData;
  };

  void arrived(port::HotKeyNumber number, std::uint32_t kind) {
    const auto found = hotKeys_.find(number);
    if (found == hotKeys_.end()) return;
    const CarbonEvent event{{kEventClassKeyboard, kind}, found->second};
    NSRunLoop::mainRunLoop().deliver(
        [event] { SendEventToEventTarget(&event, GetEventDispatcherTarget()); });
  }

  std::map<port::HotKeyNumber, EventHotKeyID> hotKeys_;
  std::vector<Installed> handlers_;
  HotKeyAssignmentHandler assigned_ = nullptr;
};

}  // namespace

EventTargetRef GetEventDispatcherTarget() {
  return EventTargetRef::Dispatcher;
}

OSStatus RegisterEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID hotKeyID,
                             EventTargetRef, std::uint32_t, EventHotKeyRef& outRef) {
  return EventDispatcher::shared().registerHotKey(keyCode, modifiers, hotKeyID, outRef);
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
  EventDispatcher::shared().setAssignmentHandler(handler);
}

OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey) {
  return EventDispatcher::shared().unregisterHotKey(hotKey);
}

OSStatus InstallEventHandler(EventTargetRef, EventHandler handler,
                             std::span<const EventTypeSpec> types, void* userData,
                             EventHandlerRef& outRef) {
  outRef = EventDispatcher::shared().install(handler, types, userData);
  return noErr;
}

OSStatus SendEventToEventTarget(EventRef event, EventTargetRef) {
  return EventDispatcher::shared().send(event);
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
