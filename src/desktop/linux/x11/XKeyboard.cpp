#include "desktop/linux/x11/XKeyboard.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>
#include <utility>

#include "desktop/linux/keys/Keymap.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/x11/Xkb.h"
#include "platform/appkit/NSEvent.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

constexpr std::chrono::milliseconds kSettling{120};

/// The bits that keys with one of these keysyms set.
std::uint32_t bitsOf(const KeyModifiers::Keysyms& keysyms,
                     const xcb_get_modifier_mapping_reply_t& mapping, const Keymap& keymap) {
  const xcb_keycode_t* keys = xcb_get_modifier_mapping_keycodes(&mapping);
  const std::size_t width = mapping.keycodes_per_modifier;
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < 8 * width; ++i) {
    if (keys[i] == 0 || std::ranges::find(keysyms, keymap.firstKeysym(keys[i])) == keysyms.end()) {
      continue;
    }
    bits |= 1U << (i / width);
  }
  return bits;
}

}  // namespace

void XKeyboard::FreeContext::operator()(xkb_context* context) const {
  xkb_context_unref(context);
}

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
    : events_(events),
      context_(xkb_context_new(static_cast<xkb_context_flags>(XKB_CONTEXT_NO_DEFAULT_INCLUDES |
                                                              XKB_CONTEXT_NO_ENVIRONMENT_NAMES))) {
  xkb_context_set_log_level(context_.get(), XKB_LOG_LEVEL_CRITICAL);
  watch_ = events.watchExtension(firstEvent,
                                 [this](const xcb_generic_event_t& event) { handle(event); });
  settling_.setSingleShot(true);
  settling_.setInterval(kSettling);
  QObject::connect(&settling_, &QTimer::timeout, &settling_, [this] {
    if (changed_) changed_();
  });
  selectEvents();
}

XKeyboard::~XKeyboard() = default;

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

std::optional<XKeyboard::Loaded> XKeyboard::read() const {
  xcb_connection_t* connection = events_.server().get();
  const auto mappingCookie = xcb_get_modifier_mapping(connection);
  const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
  xkb_keymap* keymap = xkb_x11_keymap_new_from_device(context_.get(), connection, device,
                                                      XKB_KEYMAP_COMPILE_NO_FLAGS);
  const XReply<xcb_get_modifier_mapping_reply_t> mapping(
      xcb_get_modifier_mapping_reply(connection, mappingCookie, nullptr));
  if (keymap == nullptr) return std::nullopt;
  Keymap made(keymap);
  if (!mapping) return std::nullopt;
  const KeyModifiers modifiers(
      [&](const KeyModifiers::Keysyms& keysyms) { return bitsOf(keysyms, *mapping, made); });
  return Loaded{std::move(made), modifiers};
}

void XKeyboard::load() {
  if (!std::exchange(isStale_, false)) return;
  xcb_connection_t* connection = events_.server().get();
  const XReply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
      connection, xcb_xkb_get_state(connection, XCB_XKB_ID_USE_CORE_KBD), nullptr));
  if (state) group_ = state->group;
  if (auto now = read()) {
    loaded_ = std::move(now);
  } else {
    qCWarning(lcKeys, "the server does not tell the keyboard's layout");
  }
}

const Keymap* XKeyboard::keymap() {
  load();
  return loaded_ ? &loaded_->keymap : nullptr;
}

const KeyModifiers* XKeyboard::modifiers() {
  load();
  return loaded_ ? &loaded_->modifiers : nullptr;
}

std::optional<XChord> XKeyboard::chordOf(std::uint32_t keyCode, std::uint32_t modifiers) {
  load();
  if (!loaded_ || keyCode > std::numeric_limits<std::uint16_t>::max()) return std::nullopt;
  XChord chord{{}, loaded_->modifiers.statesOf(modifiers)};
  const bool shift = (modifiers & platform::shiftKey) != 0;
  for (const Keycode key :
       loaded_->keymap.keysOf(static_cast<std::uint16_t>(keyCode), group_, shift)) {
    chord.keys.push_back(static_cast<xcb_keycode_t>(key));
  }
  if (chord.keys.empty() || chord.states.empty()) return std::nullopt;
  return chord;
}

std::optional<platform::NSEvent> XKeyTranslator::translate(const QKeyEvent& press) {
  const Keymap* keymap = keyboard_.keymap();
  if (keymap == nullptr || press.nativeScanCode() == 0) return std::nullopt;
  const std::uint32_t state = press.nativeModifiers();
  // Where XKB has the layout in the state of a key event.
  const KeyboardGroup group = state >> 13U & 3U;
  return keyDownEvent(*keymap, *keyboard_.modifiers(), press.nativeScanCode(), group, state);
}

}  // namespace linux_desktop
