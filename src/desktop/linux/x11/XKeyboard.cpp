#include "desktop/linux/x11/XKeyboard.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <chrono>
#include <limits>
#include <utility>

#include "desktop/linux/log/Log.h"
#include "desktop/linux/x11/Xkb.h"
#include "platform/appkit/NSEvent.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

constexpr std::chrono::milliseconds kSettling{120};

}  // namespace

std::unique_ptr<XKeyboard> XKeyboard::open(XEvents& events) {
  std::uint8_t firstEvent = 0;
  if (xkb_x11_setup_xkb_extension(
          events.server().get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
          XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstEvent, nullptr) == 0) {
    qCWarning(lcKeys, "no XKB: there are no shortcuts");
    return nullptr;
  }
  return std::unique_ptr<XKeyboard>(new XKeyboard(events, firstEvent));
}

XKeyboard::XKeyboard(XEvents& events, std::uint8_t firstEvent)
    : events_(events), settling_(kSettling, [this] {
        if (changed_) changed_();
      }) {
  watch_ = events.watchExtension(firstEvent,
                                 [this](const xcb_generic_event_t& event) { handle(event); });
  selectEvents();
}

void XKeyboard::selectEvents() {
  xcb_connection_t* connection = events_.server().get();
  constexpr std::uint16_t kKeyboards = XCB_XKB_NKN_DETAIL_KEYCODES | XCB_XKB_NKN_DETAIL_DEVICE_ID;
  constexpr std::uint16_t kMapParts =
      XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
  xcb_xkb_select_events_details_t details{};
  details.affectNewKeyboard = kKeyboards;
  details.newKeyboardDetails = kKeyboards;
  // Of the state the layout alone: each modifier that somebody presses would wake us else.
  details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
  details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
  xcb_xkb_select_events_aux(connection, XCB_XKB_ID_USE_CORE_KBD,
                            XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                XCB_XKB_EVENT_TYPE_STATE_NOTIFY,
                            0, 0, kMapParts, kMapParts, &details);
}

void XKeyboard::handle(const xcb_generic_event_t& event) {
  // Every event of XKB has its kind in this place.
  const auto& any = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
  if (any.xkbType == XCB_XKB_STATE_NOTIFY) {
    group_ = any.group;
  } else {
    isStale_ = true;
  }
  settling_.start();
}

const Keymap* XKeyboard::keymap() {
  if (std::exchange(isStale_, false)) {
    xcb_connection_t* connection = events_.server().get();
    const XReply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
        connection, xcb_xkb_get_state(connection, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    if (state) group_ = state->group;
    const XkbContext context = newXkbContext();
    const int device = xkb_x11_get_core_keyboard_device_id(connection);
    XkbKeymap now(xkb_x11_keymap_new_from_device(context.get(), connection, device,
                                                 XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (now) {
      keymap_.emplace(std::move(now));
    } else {
      qCWarning(lcKeys, "the server does not tell the keyboard's layout");
    }
  }
  return keymap_ ? &*keymap_ : nullptr;
}

std::optional<XChord> XKeyboard::chordOf(std::uint32_t keyCode, std::uint32_t modifiers) {
  const Keymap* keymap = this->keymap();
  if (keymap == nullptr || keyCode > std::numeric_limits<std::uint16_t>::max()) return std::nullopt;
  XChord chord{{}, keymap->modifiers().statesOf(modifiers)};
  const bool shift = (modifiers & platform::shiftKey) != 0;
  for (const Keycode key : keymap->keysOf(static_cast<std::uint16_t>(keyCode), group_, shift)) {
    chord.keys.push_back(static_cast<xcb_keycode_t>(key));
  }
  if (chord.keys.empty() || chord.states.empty()) return std::nullopt;
  return chord;
}

std::optional<platform::NSEvent> XKeyboard::translate(const QKeyEvent& press) {
  const Keymap* keymap = this->keymap();
  if (keymap == nullptr || press.nativeScanCode() == 0) return std::nullopt;
  const std::uint32_t state = press.nativeModifiers();
  // Where XKB has the layout in the state of a key event.
  const KeyboardGroup group = state >> 13U & 3U;
  return keyDownEvent(*keymap, press.nativeScanCode(), group, state);
}

}  // namespace linux_desktop
