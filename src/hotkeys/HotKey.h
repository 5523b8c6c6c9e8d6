#pragma once

#include <functional>
#include <memory>
#include <string>

#include "hotkeys/KeyCombo.h"
#include "platform/foundation/SmallValues.h"

namespace hotkeys {

/// One shortcut that works wherever the user is. Making one registers it with the registry (see
/// HotKeysController), which does not own it: a hot key goes, and is unregistered, with its last
/// owner. Main thread only.
class HotKey final : public std::enable_shared_from_this<HotKey> {
 public:
  using Handler = std::function<void()>;

  /// `purpose`: what a desktop shows that lists the keys of programs.
  [[nodiscard]] static std::shared_ptr<HotKey> make(KeyCombo keyCombo, Handler keyDown = nullptr,
                                                    Handler keyUp = nullptr,
                                                    std::string purpose = {});
  [[nodiscard]] static std::shared_ptr<HotKey> make(std::uint32_t carbonKeyCode,
                                                    std::uint32_t carbonModifiers,
                                                    Handler keyDown = nullptr,
                                                    Handler keyUp = nullptr);
  [[nodiscard]] static std::shared_ptr<HotKey> make(Key key, ModifierFlags modifiers,
                                                    Handler keyDown = nullptr,
                                                    Handler keyUp = nullptr);
  ~HotKey();
  HotKey(const HotKey&) = delete;
  HotKey& operator=(const HotKey&) = delete;

  /// The registry's name for it: a different one for each hot key.
  [[nodiscard]] const platform::NSUUID& identifier() const { return identifier_; }
  [[nodiscard]] const KeyCombo& keyCombo() const { return keyCombo_; }
  [[nodiscard]] const std::string& purpose() const { return purpose_; }

  /// Run when the combination is pressed and when it is let go; either may be empty.
  Handler keyDownHandler;
  Handler keyUpHandler;

  /// The name of the keys that work in place of the combination, where the desktop assigns them
  /// itself and has; else empty.
  std::string assignedKeys;
  /// Run when the desktop has assigned keys, or has refused the combination late, before the user
  /// is told of that; may be empty.
  Handler assignmentHandler;

  /// While paused, the hot key is not registered.
  [[nodiscard]] bool isPaused() const { return paused_; }
  /// Unregisters or registers, also when nothing changes.
  void setPaused(bool paused);

 private:
  HotKey(KeyCombo keyCombo, Handler keyDown, Handler keyUp, std::string purpose);

  platform::NSUUID identifier_ = platform::NSUUID::UUID();
  KeyCombo keyCombo_;
  std::string purpose_;
  bool paused_ = false;
};

}  // namespace hotkeys
