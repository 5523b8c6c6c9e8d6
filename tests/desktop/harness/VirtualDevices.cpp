#include "desktop/harness/VirtualDevices.h"

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>
#include <virtual-keyboard-unstable-v1-client-protocol.h>
#include <wlr-virtual-pointer-unstable-v1-client-protocol.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>

#include "desktop/harness/Process.h"

namespace harness {

namespace {

// X counts keys from 8, the kernel from 0.
constexpr std::uint32_t kFirstKeycode = 8;

std::uint32_t now() {
  const auto since = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
}

std::uint32_t codeOf(Button button) {
  constexpr std::array<std::uint32_t, 3> kCodes{BTN_LEFT, BTN_MIDDLE, BTN_RIGHT};
  return kCodes.at(static_cast<std::size_t>(button) - 1);
}

FileDescriptor fileWith(const std::string& text) {
  FileDescriptor file(::memfd_create("keymap", MFD_CLOEXEC));
  if (::write(file.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    throw std::runtime_error("no memory for a keymap");
  return file;
}

}  // namespace

VirtualDevices::VirtualDevices(const std::string& socket) : client_(socket) {
  auto* pointers =
      client_.bind<zwlr_virtual_pointer_manager_v1>(zwlr_virtual_pointer_manager_v1_interface);
  if (pointers == nullptr) throw std::runtime_error("the compositor takes no virtual pointer");
  pointer_ = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers, client_.seat());
  zwlr_virtual_pointer_manager_v1_destroy(pointers);
  plugKeyboard();
  client_.sync();
}

VirtualDevices::~VirtualDevices() {
  zwp_virtual_keyboard_v1_destroy(keyboard_);
  zwlr_virtual_pointer_v1_destroy(pointer_);
}

void VirtualDevices::plugKeyboard() {
  auto* keyboards =
      client_.bind<zwp_virtual_keyboard_manager_v1>(zwp_virtual_keyboard_manager_v1_interface);
  if (keyboards == nullptr) throw std::runtime_error("the compositor takes no virtual keyboard");
  keyboard_ = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards, client_.seat());
  zwp_virtual_keyboard_manager_v1_destroy(keyboards);
  useLayouts("us", 0);
}

void VirtualDevices::useLayouts(const std::string& layouts, std::uint32_t inEffect) {
  const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(
      xkb_context_new(XKB_CONTEXT_NO_FLAGS), xkb_context_unref);
  const xkb_rule_names usual{.rules = nullptr,
                             .model = nullptr,
                             .layout = layouts.c_str(),
                             .variant = nullptr,
                             .options = nullptr};
  keymap_.reset(xkb_keymap_new_from_names(context.get(), &usual, XKB_KEYMAP_COMPILE_NO_FLAGS));
  state_.reset(xkb_state_new(keymap_.get()));
  const std::unique_ptr<char, decltype(&std::free)> text(
      xkb_keymap_get_as_string(keymap_.get(), XKB_KEYMAP_FORMAT_TEXT_V1), std::free);
  const std::string all = std::string(text.get()) + '\0';
  const FileDescriptor file = fileWith(all);
  zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file.get(),
                                 static_cast<std::uint32_t>(all.size()));
  layout_ = inEffect;
  xkb_state_update_mask(state_.get(), 0, 0, 0, 0, 0, layout_);
  tellModifiers();
}

// Compositors put the place that they are told over all monitors.
void VirtualDevices::moveTo(int x, int y) const {
  Rect all;
  for (const WaylandOutput& output : client_.outputs()) {
    all.width = std::max(all.width, output.area.right());
    all.height = std::max(all.height, output.area.bottom());
  }
  zwlr_virtual_pointer_v1_motion_absolute(
      pointer_, now(), static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
      static_cast<std::uint32_t>(all.width), static_cast<std::uint32_t>(all.height));
  zwlr_virtual_pointer_v1_frame(pointer_);
  client_.sync();
}

void VirtualDevices::turn(Button button, bool down) const {
  zwlr_virtual_pointer_v1_button(
      pointer_, now(), codeOf(button),
      down ? WL_POINTER_BUTTON_STATE_PRESSED : WL_POINTER_BUTTON_STATE_RELEASED);
  zwlr_virtual_pointer_v1_frame(pointer_);
  client_.sync();
}

void VirtualDevices::move(std::string_view name, bool down) const {
  const std::uint32_t code = keycode(name);
  zwp_virtual_keyboard_v1_key(
      keyboard_, now(), code - kFirstKeycode,
      down ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
  xkb_state_update_key(state_.get(), code, down ? XKB_KEY_DOWN : XKB_KEY_UP);
  tellModifiers();
}

void VirtualDevices::tellModifiers() const {
  const auto part = [this](xkb_state_component component) {
    return xkb_state_serialize_mods(state_.get(), component);
  };
  zwp_virtual_keyboard_v1_modifiers(keyboard_, part(XKB_STATE_MODS_DEPRESSED),
                                    part(XKB_STATE_MODS_LATCHED), part(XKB_STATE_MODS_LOCKED),
                                    layout_);
  client_.sync();
}

std::uint32_t VirtualDevices::keycode(std::string_view name) const {
  const xkb_keysym_t wanted = keysymOf(name);
  for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap_.get());
       code <= xkb_keymap_max_keycode(keymap_.get()); ++code) {
    const xkb_keysym_t* keysyms = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), code, layout_, 0, &keysyms);
    if (std::find(keysyms, keysyms + count, wanted) != keysyms + count) return code;
  }
  throw std::runtime_error("no key makes " + std::string(name));
}

}  // namespace harness
