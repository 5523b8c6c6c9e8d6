#include "desktop/linux/x11/XHotKeys.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <string>

#include "desktop/linux/keys/KeyTable.h"
#include "desktop/linux/log/Log.h"
#include "platform/carbon/CarbonEvents.h"

namespace linux_desktop {
namespace {

using platform::port::HotKeyNumber;

/// What a grab brings.
constexpr std::uint32_t kEvents =
    XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;

template <class T>
bool haveCommon(const std::vector<T>& some, const std::vector<T>& others) {
  return std::ranges::find_first_of(some, others) != some.end();
}

bool overlap(const XChord& one, const XChord& other) {
  return haveCommon(one.keys, other.keys) && haveCommon(one.states, other.states);
}

bool includes(const XChord& chord, const xcb_input_key_press_event_t& press) {
  const std::uint32_t state = press.mods.effective & KeyModifiers::kAll;
  return overlap(chord, {{static_cast<xcb_keycode_t>(press.detail)}, {state}});
}

}  // namespace

std::unique_ptr<XHotKeys> XHotKeys::open(XEvents& events, XKeyboard& keyboard) {
  if (const auto extension = events.server().inputExtension()) {
    return std::unique_ptr<XHotKeys>(new XHotKeys(events, keyboard, *extension));
  }
  qCWarning(lcKeys, "no XInput 2.2: there are no shortcuts");
  return nullptr;
}

XHotKeys::XHotKeys(XEvents& events, XKeyboard& keyboard, std::uint8_t extension)
    : events_(events), keyboard_(keyboard), extension_(extension) {
  watch_ = events.watchExtension(XCB_GE_GENERIC,
                                 [this](const xcb_generic_event_t& event) { handle(event); });
  keyboard.setChanged([this] { adapt(); });
}

platform::OSStatus XHotKeys::registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                            std::uint32_t modifiers,
                                            const std::string& /*purpose*/) {
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

// The server has two kinds of grabs and looks for others of the same kind only, so both are taken.
// Of the two it reports to the one that came last, which is the kind that tells repeats.
bool XHotKeys::grab(const XChord& chord) {
  // To grab once more what is ours already succeeds, and to undo it would take it away.
  if (isOurs(chord)) return false;
  xcb_connection_t* connection = events_.server().get();
  const xcb_window_t root = events_.server().root();
  std::vector<xcb_void_cookie_t> older;
  std::vector<xcb_input_xi_passive_grab_device_cookie_t> newer;
  for (const xcb_keycode_t key : chord.keys) {
    for (const std::uint32_t state : chord.states) {
      older.push_back(xcb_grab_key_checked(connection, 0, root, static_cast<std::uint16_t>(state),
                                           key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    newer.push_back(xcb_input_xi_passive_grab_device(
        connection, XCB_CURRENT_TIME, root, XCB_NONE, key, XCB_INPUT_DEVICE_ALL_MASTER,
        static_cast<std::uint16_t>(chord.states.size()), 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
        XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_GRAB_MODE_ASYNC, 0, &kEvents, chord.states.data()));
  }
  // All are on their way now; the answer to the first question says how each of them went.
  bool isTaken = false;
  for (const xcb_void_cookie_t& cookie : older) {
    const XReply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    isTaken = isTaken || error != nullptr;
  }
  for (const auto& cookie : newer) {
    const XReply<xcb_input_xi_passive_grab_device_reply_t> refused(
        xcb_input_xi_passive_grab_device_reply(connection, cookie, nullptr));
    isTaken = isTaken || !refused || refused->num_modifiers != 0;
  }
  // What another program holds is not touched by this.
  if (isTaken) ungrab(chord);
  return !isTaken;
}

void XHotKeys::ungrab(const XChord& chord) {
  xcb_connection_t* connection = events_.server().get();
  const xcb_window_t root = events_.server().root();
  for (const xcb_keycode_t key : chord.keys) {
    for (const std::uint32_t state : chord.states) {
      xcb_ungrab_key(connection, key, root, static_cast<std::uint16_t>(state));
    }
    xcb_input_xi_passive_ungrab_device(connection, root, key, XCB_INPUT_DEVICE_ALL_MASTER,
                                       static_cast<std::uint16_t>(chord.states.size()),
                                       XCB_INPUT_GRAB_TYPE_KEYCODE, chord.states.data());
  }
  // Others may take it as soon as anybody is told that it is free.
  xcb_flush(connection);
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
  const auto& key = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
  if (key.extension != extension_) return;
  if (key.event_type == XCB_INPUT_KEY_PRESS) pressed(key);
  if (key.event_type == XCB_INPUT_KEY_RELEASE) released(static_cast<xcb_keycode_t>(key.detail));
}

void XHotKeys::pressed(const xcb_input_key_press_event_t& press) {
  const auto key = static_cast<xcb_keycode_t>(press.detail);
  const bool isRepeat = (press.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
  // Nobody told of the release before: that of a keyboard which was unplugged, for instance.
  if (!isRepeat && grabbing_ == key) released(key);
  if (!grabbing_) grabbing_ = key;
  if (isRepeat) {
    // Also of a key that was down already when it became a hot key.
    qCDebug(lcKeys) << "key" << key << "repeats";
    return;
  }
  const auto found = std::ranges::find_if(hotKeys_, [&press](const HotKey& hotKey) {
    return hotKey.chord && includes(*hotKey.chord, press);
  });
  if (found == hotKeys_.end()) return;
  found->down = key;
  if (client_ != nullptr) client_->hotKeyPressed(found->number);
}

void XHotKeys::released(xcb_keycode_t key) {
  // What else is down then is let go unseen.
  const bool isLast = grabbing_ == key;
  if (isLast) grabbing_.reset();
  // The modifiers may have been let go before it.
  const auto isUp = [isLast, key](const HotKey& hotKey) {
    return hotKey.down && (isLast || *hotKey.down == key);
  };
  // Hot keys come and go while one is reported.
  for (auto found = std::ranges::find_if(hotKeys_, isUp); found != hotKeys_.end();
       found = std::ranges::find_if(hotKeys_, isUp)) {
    found->down.reset();
    if (client_ != nullptr) client_->hotKeyReleased(found->number);
  }
}

}  // namespace linux_desktop
