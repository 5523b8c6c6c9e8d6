#include "desktop/linux/wayland/WaylandKeyboard.h"

#include <sys/mman.h>

#include <chrono>
#include <utility>

#include "desktop/linux/files/FileDescriptor.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr std::uint32_t kSeatVersion = 5;
/// For the compositor's answer at the start.
constexpr std::chrono::milliseconds kPatience{300};

/// Null where that is no layout, or cannot be had.
XkbKeymap keymapIn(int file, std::uint32_t size) {
  void* text = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
  if (text == MAP_FAILED) return nullptr;
  XkbKeymap keymap(xkb_keymap_new_from_string(newXkbContext().get(), static_cast<const char*>(text),
                                              XKB_KEYMAP_FORMAT_TEXT_V1,
                                              XKB_KEYMAP_COMPILE_NO_FLAGS));
  ::munmap(text, size);
  return keymap;
}

}  // namespace

WaylandKeyboard::WaylandKeyboard(const QtWayland& qt)
    : seat_(qt.bindAwaited<wl_seat>(wl_seat_interface, kSeatVersion)) {
  static constexpr wl_seat_listener kListener{
      [](void* self, wl_seat*, std::uint32_t capabilities) {
        static_cast<WaylandKeyboard*>(self)->follow(capabilities);
      },
      [](void*, wl_seat*, const char*) {}};
  if (!seat_) return;
  wl_seat_add_listener(seat_.get(), &kListener, this);
  // Hot keys are registered before the event loop runs.
  qt.waitFor(
      *seat_, [this] { return isSeatKnown_; }, kPatience);
  if (!keyboard_) return;
  qt.waitFor(
      *keyboard_, [this] { return keymap_.has_value(); }, kPatience);
}

void WaylandKeyboard::follow(std::uint32_t capabilities) {
  static constexpr auto to = [](void* self) -> WaylandKeyboard& {
    return *static_cast<WaylandKeyboard*>(self);
  };
  static constexpr wl_keyboard_listener kListener{
      .keymap =
          [](void* self, wl_keyboard*, std::uint32_t format, std::int32_t file,
             std::uint32_t size) {
            const FileDescriptor owned(file);
            if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1) to(self).load(owned.get(), size);
          },
      .enter = [](void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {},
      .leave = [](void*, wl_keyboard*, std::uint32_t, wl_surface*) {},
      .key = [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
      .modifiers = [](void* self, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t,
                      std::uint32_t, std::uint32_t group) { to(self).group_ = group; },
      .repeat_info = [](void*, wl_keyboard*, std::int32_t, std::int32_t) {}};
  isSeatKnown_ = true;
  if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) == 0) {
    keyboard_.reset();
  } else if (!keyboard_) {
    keyboard_.reset(wl_seat_get_keyboard(seat_.get()));
    wl_keyboard_add_listener(keyboard_.get(), &kListener, this);
  }
}

void WaylandKeyboard::load(int file, std::uint32_t size) {
  XkbKeymap keymap = keymapIn(file, size);
  if (!keymap) {
    qCWarning(lcKeys, "the compositor's keyboard layout cannot be read");
    return;
  }
  keymap_.emplace(std::move(keymap));
  if (changed_) changed_();
}

std::optional<platform::NSEvent> WaylandKeyboard::translate(const QKeyEvent& press) {
  if (!keymap_ || press.nativeScanCode() == 0) return std::nullopt;
  return keyDownEvent(*keymap_, press.nativeScanCode(), group_, press.nativeModifiers());
}

}  // namespace linux_desktop
