#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "desktop/linux/keys/Keymap.h"
#include "desktop/linux/wayland/QtWayland.h"
#include "desktop/linux/windowsystem/KeyTranslator.h"

namespace linux_desktop {

/// The keyboard that types into Qt's windows: Qt knows its layouts and which of them is in effect,
/// but does not tell. Main thread only.
class WaylandKeyboard final : public KeyTranslator {
 public:
  /// `qt` outlives this. Returns when it is known what the keys give.
  explicit WaylandKeyboard(const QtWayland& qt);
  WaylandKeyboard(const WaylandKeyboard&) = delete;
  WaylandKeyboard& operator=(const WaylandKeyboard&) = delete;

  /// Null where there is none.
  [[nodiscard]] wl_seat* seat() const { return seat_.get(); }
  /// Null where there is no keyboard, or it does not tell.
  [[nodiscard]] const Keymap* keymap() const { return keymap_ ? &*keymap_ : nullptr; }
  /// Called out of the event loop with every change of that.
  void setChanged(std::function<void()> changed) { changed_ = std::move(changed); }
  [[nodiscard]] std::optional<platform::NSEvent> translate(const QKeyEvent& press) override;

 private:
  void follow(std::uint32_t capabilities);
  void load(int file, std::uint32_t size);

  WaylandProxy<wl_seat> seat_;
  WaylandProxy<wl_keyboard> keyboard_;
  std::optional<Keymap> keymap_;
  KeyboardGroup group_ = 0;
  bool isSeatKnown_ = false;
  std::function<void()> changed_;
};

}  // namespace linux_desktop
