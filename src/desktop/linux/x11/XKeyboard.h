#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/keys/Keymap.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/windowsystem/KeyTranslator.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// A combination as the server knows it: any of some keys, in any of some states of the modifiers.
struct XChord {
  std::vector<xcb_keycode_t> keys;
  /// See KeyModifiers::statesOf().
  std::vector<std::uint32_t> states;
  bool operator==(const XChord&) const = default;
};

/// The keyboard that the user types on, kept current: its layouts, which of them is in effect, and
/// its modifiers. Main thread only.
class XKeyboard final : public KeyTranslator {
 public:
  /// Null, after one line on standard error, where the server has no XKB. `events` outlives this.
  [[nodiscard]] static std::unique_ptr<XKeyboard> open(XEvents& events);

  /// Called when layouts or modifiers may have changed; changes at a time count as one.
  void setChanged(std::function<void()> changed) { changed_ = std::move(changed); }

  // What follows may ask the server. Null or none when it cannot tell, after one line.

  [[nodiscard]] const Keymap* keymap();
  /// The layout in effect.
  [[nodiscard]] KeyboardGroup group() const { return group_; }
  /// What to press for a virtual key code with a mask of `platform/carbon/KeyCodes.h`. None where
  /// the keyboard lacks the key or a modifier.
  [[nodiscard]] std::optional<XChord> chordOf(std::uint32_t keyCode, std::uint32_t modifiers);
  /// Of a key press that Qt took from the server.
  [[nodiscard]] std::optional<platform::NSEvent> translate(const QKeyEvent& press) override;

 private:
  XKeyboard(XEvents& events, std::uint8_t firstEvent);
  void selectEvents();
  void handle(const xcb_generic_event_t& event);

  XEvents& events_;
  std::unique_ptr<XEvents::Watch> watch_;
  std::optional<Keymap> keymap_;
  bool isStale_ = true;
  KeyboardGroup group_ = 0;
  std::function<void()> changed_;
  /// One change arrives as several events, with states between them that nobody types in.
  OneShot settling_;
};

}  // namespace linux_desktop
