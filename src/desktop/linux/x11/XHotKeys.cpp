#include "desktop/linux/x11/XHotKeys.h"

#include <algorithm>
#include <ranges>
#include <string>

#include "desktop/linux/keys/CombinationName.h"
#include "desktop/linux/keys/KeysLog.h"
#include "platform/carbon/CarbonEvents.h"

namespace linux_desktop {
namespace {

using platform::port::HotKeyNumber;

/// A held key repeats much sooner. What comes later is another press, whose key's release was lost:
/// with a keyboard that was unplugged, for instance.
constexpr xcb_timestamp_t kLongestRepeat = 3000;

bool overlap(const XChord& one, const XChord& other) {
  return one.state == other.state && std::ranges::any_of(one.keys, [&](xcb_keycode_t key) {
           return std::ranges::find(other.keys, key) != other.keys.end();
         });
}

}  // namespace

XHotKeys::XHotKeys(XEvents& events, XKeyboard& keyboard) : events_(events), keyboard_(keyboard) {
  // Grabbed keys come whatever is selected on the window.
  watch_ = events.watch(events.server().root(), XCB_EVENT_MASK_NO_EVENT,
                        [this](const xcb_generic_event_t& event) { handle(event); });
  keyboard.setChanged([this] { adapt(); });
}

platform::OSStatus XHotKeys::registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                            std::uint32_t modifiers) {
  const auto chord = keyboard_.chordOf(keyCode, modifiers);
  if (!chord) {
    qCWarning(lcKeys, "%s: not on this keyboard", combinationName(keyCode, modifiers).c_str());
    return platform::eventHotKeyInvalidErr;
  }
  if (!grab(*chord)) return platform::eventHotKeyExistsErr;
  hotKeys_.push_back({number, keyCode, modifiers, chord});
  return platform::noErr;
}

void XHotKeys::unregisterHotKey(HotKeyNumber number) {
  const auto found = std::ranges::find(hotKeys_, number, &HotKey::number);
  if (found == hotKeys_.end()) return;
  if (found->chord) ungrab(*found->chord);
  hotKeys_.erase(found);
}

bool XHotKeys::isOurs(const XChord& chord) const {
  return std::ranges::any_of(hotKeys_, [&](const HotKey& hotKey) {
    return hotKey.chord && overlap(*hotKey.chord, chord);
  });
}

bool XHotKeys::grab(const XChord& chord) {
  // To grab once more what is ours already succeeds, and to undo it would take it away.
  if (isOurs(chord)) return false;
  xcb_connection_t* connection = events_.server().get();
  std::vector<xcb_void_cookie_t> cookies;
  for (const xcb_keycode_t key : chord.keys) {
    for (const std::uint16_t locks : chord.lockStates) {
      const auto state = static_cast<std::uint16_t>(chord.state | locks);
      cookies.push_back(xcb_grab_key_checked(connection, 0, events_.server().root(), state, key,
                                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
  }
  // All are on their way now; the answer to the first question says how each of them went.
  bool isTaken = false;
  for (const xcb_void_cookie_t& cookie : cookies) {
    const XReply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    isTaken = isTaken || error != nullptr;
  }
  // What another program holds is not touched by this.
  if (isTaken) ungrab(chord);
  return !isTaken;
}

void XHotKeys::ungrab(const XChord& chord) {
  for (const xcb_keycode_t key : chord.keys) {
    for (const std::uint16_t locks : chord.lockStates) {
      xcb_ungrab_key(events_.server().get(), key, events_.server().root(),
                     static_cast<std::uint16_t>(chord.state | locks));
    }
  }
  // Others may take it as soon as anybody is told that it is free.
  xcb_flush(events_.server().get());
}

void XHotKeys::adapt() {
  struct Move {
    HotKey& hotKey;
    std::optional<XChord> to;
    bool wasGrabbed;
  };
  std::vector<Move> moves;
  for (HotKey& hotKey : hotKeys_) {
    auto chord = keyboard_.chordOf(hotKey.keyCode, hotKey.modifiers);
    if (chord == hotKey.chord) continue;
    moves.push_back({hotKey, std::move(chord), hotKey.chord.has_value()});
  }
  const Keymap* keymap = keyboard_.keymap();
  const std::string layout = keymap == nullptr ? "" : keymap->layoutName(keyboard_.group());
  // They may trade places, so all let go first.
  for (const Move& move : moves) {
    if (move.hotKey.chord) ungrab(*move.hotKey.chord);
    move.hotKey.chord.reset();
  }
  for (Move& move : moves) {
    if (move.to && grab(*move.to)) move.hotKey.chord = std::move(move.to);
    if (move.hotKey.chord || !move.wasGrabbed) continue;
    qCWarning(
        lcKeys, "%s: %s %s", combinationName(move.hotKey.keyCode, move.hotKey.modifiers).c_str(),
        move.to ? "another program has it on the layout" : "not on the layout", layout.c_str());
  }
  qCDebug(lcKeys, "the layout is %s, %zu moved", layout.c_str(), moves.size());
}

void XHotKeys::handle(const xcb_generic_event_t& event) {
  const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
  switch (event.response_type & 0x7f) {
    case XCB_KEY_PRESS:
      return pressed(key);
    case XCB_KEY_RELEASE:
      return released(key.detail);
    default:
      return;
  }
}

void XHotKeys::pressed(const xcb_key_press_event_t& press) {
  const auto isIt = [&](const HotKey& hotKey) {
    if (hotKey.down) return *hotKey.down == press.detail;
    if (!hotKey.chord) return false;
    const auto held = press.state & XModifiers::kAll & ~hotKey.chord->lockStates.back();
    return held == hotKey.chord->state &&
           std::ranges::find(hotKey.chord->keys, press.detail) != hotKey.chord->keys.end();
  };
  const auto found = std::ranges::find_if(hotKeys_, isIt);
  if (found == hotKeys_.end()) return;
  const bool isRepeat = found->down && press.time - found->lastPress < kLongestRepeat;
  found->down = press.detail;
  found->lastPress = press.time;
  if (isRepeat) {
    qCDebug(lcKeys) << "hot key" << found->number << "repeats";
  } else if (client_ != nullptr) {
    client_->hotKeyPressed(found->number);
  }
}

void XHotKeys::released(xcb_keycode_t key) {
  // The modifiers may have been let go before it.
  const auto found =
      std::ranges::find_if(hotKeys_, [key](const HotKey& hotKey) { return hotKey.down == key; });
  if (found == hotKeys_.end()) return;
  found->down.reset();
  if (client_ != nullptr) client_->hotKeyReleased(found->number);
}

}  // namespace linux_desktop
