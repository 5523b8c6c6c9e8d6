#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/foundation/SmallValues.h"
#include "platform/port/HotKeys.h"

namespace platform {

// The hot-key part of the Carbon event manager. Main thread only.

inline constexpr OSStatus paramErr = -50;
inline constexpr OSStatus eventParameterNotFoundErr = -9870;
/// What a handler answers to leave an event to others.
inline constexpr OSStatus eventNotHandledErr = -9874;
inline constexpr OSStatus eventHotKeyExistsErr = -9878;
inline constexpr OSStatus eventHotKeyInvalidErr = -9879;

inline constexpr std::uint32_t kEventClassKeyboard = fourCharCode("keyb");
inline constexpr std::uint32_t kEventHotKeyPressed = 5;
inline constexpr std::uint32_t kEventHotKeyReleased = 6;
inline constexpr std::uint32_t kEventParamDirectObject = fourCharCode("----");
inline constexpr std::uint32_t typeEventHotKeyID = fourCharCode("hkid");

/// Names a hot key towards its owner: who registered it, and which of theirs it is.
struct EventHotKeyID {
  std::uint32_t signature = 0;
  std::uint32_t id = 0;

  bool operator==(const EventHotKeyID&) const = default;
};
static_assert(sizeof(EventHotKeyID) == 8);

/// A kind of event.
struct EventTypeSpec {
  std::uint32_t eventClass = 0;
  std::uint32_t eventKind = 0;

  bool operator==(const EventTypeSpec&) const = default;
};

/// A hot-key event.
struct CarbonEvent {
  EventTypeSpec type;
  EventHotKeyID hotKeyID;
};
/// May be null.
using EventRef = const CarbonEvent*;

/// Where events go.
enum class EventTargetRef : std::uint8_t { Dispatcher };
/// A registered hot key; empty by default.
enum class EventHotKeyRef : port::HotKeyNumber { None };
/// An installed handler; empty by default.
enum class EventHandlerRef : std::uint32_t { None };
/// Answers noErr when the event was its own.
using EventHandler = OSStatus (*)(EventRef event, void* userData);

/// The target that every event of the application reaches.
[[nodiscard]] EventTargetRef GetEventDispatcherTarget();

/// Registers the combination for this process wherever the user is: a virtual key code and a mask
/// of `KeyCodes.h`. On success `outRef` is not empty; on any other status nothing is registered.
/// eventHotKeyExistsErr: the combination is taken, by another program or by an earlier call.
/// eventHotKeyInvalidErr: this desktop cannot give it away. `options` is 0. The `id` is not 0, and
/// another in each call in a process, whoever calls. `purpose` is for desktops that list the keys
/// of programs.
[[nodiscard]] OSStatus RegisterEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                           EventHotKeyID hotKeyID, EventTargetRef target,
                                           std::uint32_t options, EventHotKeyRef& outRef,
                                           const std::string& purpose = {});
/// Whether this desktop keeps the combination from everybody, so that nobody need try.
[[nodiscard]] bool IsReservedHotKey(std::uint32_t keyCode, std::uint32_t modifiers);
/// Where the desktop gives no program hot keys: what its user writes into its configuration so that
/// the combination does that action of ours. None where there are hot keys, and where nobody knows.
[[nodiscard]] std::optional<std::string> OwnHotKeyBinding(std::uint32_t keyCode,
                                                          std::uint32_t modifiers,
                                                          std::string_view action);
/// Whether it does so, so that a refusal is nothing that another combination would help.
[[nodiscard]] bool AreHotKeysBoundByUser();
/// Whether the desktop acts on its own keys, as it does at first, or leaves them to the titled
/// window of the application that has the keyboard. Some desktops keep them.
void SetSymbolicHotKeysEnabled(bool enabled);
/// Has `handler` called when a desktop that assigns the keys itself has made up its mind, or the
/// user has: with the name of the keys that the hot key has now, or none where it has none and is
/// withdrawn (see port::HotKeysClient). There is one handler; null: nobody is told.
using HotKeyAssignmentHandler = void (*)(EventHotKeyID hotKeyID,
                                         const std::optional<std::string>& keys);
void SetHotKeyAssignmentHandler(HotKeyAssignmentHandler handler);
/// Withdraws a hot key. A reference that is empty or was withdrawn before is paramErr.
OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey);

/// Has `handler` called for events of these types until the process ends. It is asked before the
/// handlers that were installed earlier.
[[nodiscard]] OSStatus InstallEventHandler(EventTargetRef target, EventHandler handler,
                                           std::span<const EventTypeSpec> types, void* userData,
                                           EventHandlerRef& outRef);

/// Asks one handler after the other until one does not answer eventNotHandledErr; its answer.
OSStatus SendEventToEventTarget(EventRef event, EventTargetRef target);

/// One of the two kinds above.
[[nodiscard]] std::uint32_t GetEventKind(EventRef event);
/// Copies a parameter of the event to `outData`. A hot-key event has one: the direct object, an
/// EventHotKeyID; any other is eventParameterNotFoundErr. paramErr: it does not fit `bufferSize`.
[[nodiscard]] OSStatus GetEventParameter(EventRef event, std::uint32_t name, std::uint32_t type,
                                         std::uint32_t* outActualType, std::size_t bufferSize,
                                         std::size_t* outActualSize, void* outData);

}  // namespace platform
