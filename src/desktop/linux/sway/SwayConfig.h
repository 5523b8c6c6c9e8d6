#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <cstdint>
#include <map>
#include <vector>

#include "desktop/linux/keys/Keymap.h"
#include "desktop/linux/sway/SwaySocket.h"

namespace linux_desktop {

/// A combination as sway tells two of them apart: modifiers with a key by its number, or by what it
/// gives.
struct SwayChord {
  /// Of `platform/carbon/KeyCodes.h`, and a bit of ours for all that are none of those.
  std::uint32_t modifiers = 0;
  /// 0: it is told by the keysym.
  Keycode key = 0;
  /// A letter's small one.
  xkb_keysym_t keysym = XKB_KEY_NoSymbol;
  bool operator==(const SwayChord&) const = default;
};

/// What to write for modifiers of `platform/carbon/KeyCodes.h` and a key's number.
[[nodiscard]] QByteArray swayCode(std::uint32_t modifiers, Keycode key);

/// All that a press of the key is to sway, in a layout.
[[nodiscard]] std::vector<SwayChord> swayChordsOfPress(const Keymap& keymap, KeyboardGroup group,
                                                       std::uint32_t modifiers, Keycode key);

/// The user's configuration of sway, as far as it counts outside of modes: a directive a line, with
/// the lines of included files, of blocks, and with variables put in.
class SwayConfig {
 public:
  /// As sway has loaded it; empty when it does not say. Waits as SwaySocket::call does.
  [[nodiscard]] static SwayConfig read(SwaySocket& sway);
  /// Of a file's text; what it includes is looked for beside `file`.
  SwayConfig(const QByteArray& text, const QByteArray& file);

  /// What the last such directive says, or else `usual`.
  [[nodiscard]] QByteArray valueOf(const QByteArray& directive, const QByteArray& usual) const;
  /// What `bindsym` and `bindcode` bind, whatever their options.
  [[nodiscard]] std::vector<SwayChord> bound() const;

 private:
  void add(const QByteArray& text, const QByteArray& folder, int depth);
  void addIncluded(const QByteArray& pattern, const QByteArray& folder, int depth);
  [[nodiscard]] QByteArray withVariables(QByteArray line) const;

  /// So that "$mod2" is not taken for "$mod" and a 2.
  struct LongestFirst {
    bool operator()(const QByteArray& a, const QByteArray& b) const {
      return a.size() != b.size() ? a.size() > b.size() : a < b;
    }
  };

  std::vector<QByteArrayList> lines_;  // the words of each
  std::map<QByteArray, QByteArray, LongestFirst> variables_;
};

}  // namespace linux_desktop
