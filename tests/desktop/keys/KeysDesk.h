#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "desktop/harness/XDesk.h"
#include "desktop/linux/keys/SessionHotKeys.h"
#include "desktop/linux/x11/XHotKeys.h"
#include "desktop/linux/x11/XKeyboard.h"
#include "desktop/x11/TestProgram.h"
#include "platform/carbon/CarbonEvents.h"
#include "platform/carbon/KeyCodes.h"

/// Places of keys on the usual keyboard, by what the United States have there.
namespace place {
inline constexpr std::uint8_t k1 = 10, kMinus = 20, kTab = 23, kQ = 24, kY = 29, kP = 33,
                              kReturn = 36, kControl = 37, kA = 38, kQuote = 48, kShift = 50,
                              kZ = 52, kM = 58, kAlt = 64, kCapsLock = 66, kF1 = 67, kNumLock = 77,
                              kKeypad5 = 84, kKeypadEnter = 104, kRightAlt = 108, kUp = 111,
                              kDelete = 119, kSuper = 133, kRightSuper = 134, kMenu = 135;
}  // namespace place

/// What a foreign window is typed. Its own connection, so it hears as any other program does.
class Typewriter {
 public:
  /// Takes the keyboard.
  explicit Typewriter(harness::XDesk& desk);

  struct Press {
    std::uint8_t key;
    std::uint16_t state;
  };

  /// Forgets what was typed until now.
  void forget();
  /// The keys that have been let go there since, once `count` of them have been.
  [[nodiscard]] std::vector<std::uint8_t> released(std::size_t count);
  /// What was pressed there before that.
  [[nodiscard]] const std::vector<Press>& presses() const { return presses_; }
  /// Grabs as other programs do; false when somebody has it already.
  [[nodiscard]] bool grabs(std::uint8_t keycode, std::uint16_t modifiers);
  void ungrab(std::uint8_t keycode, std::uint16_t modifiers);
  /// The same by XInput, which the server keeps apart.
  [[nodiscard]] bool grabsByXInput(std::uint8_t keycode, std::uint32_t modifiers);
  void ungrabByXInput(std::uint8_t keycode, std::uint32_t modifiers);

 private:
  void takeEvents();

  harness::XDesk& desk_;
  harness::XConnection x_;
  std::vector<Press> presses_;
  std::vector<std::uint8_t> released_;
};

/// An X server, the keyboard's classes in this process, and another program that has the keyboard.
class KeysDesk : public platform::port::HotKeysClient {
 public:
  /// `session` as XDG_CURRENT_DESKTOP has it.
  explicit KeysDesk(const char* session = "");

  [[nodiscard]] harness::XDesk& desk() { return desk_; }
  [[nodiscard]] const harness::XInput& input() { return desk_.input(); }
  [[nodiscard]] TestProgram& program() { return program_; }
  [[nodiscard]] Typewriter& other() { return other_; }
  [[nodiscard]] bool until(const std::function<bool()>& fact) { return program_.until(fact); }

  /// As setxkbmap is told.
  void setLayout(std::vector<std::string> arguments);
  /// Returns once we are on the layout, by its English name, and have moved so many hot keys for
  /// that.
  [[nodiscard]] bool adapted(const std::string& layout, int moved);
  /// Waits until a hot key that is held repeats once more.
  [[nodiscard]] bool repeats() { return program_.logs("repeats$"); }

  [[nodiscard]] platform::OSStatus registers(std::uint32_t number, std::uint32_t keyCode,
                                             std::uint32_t modifiers);
  void unregister(std::uint32_t number) { hotKeys_.unregisterHotKey(number); }

  using Reports = std::vector<std::string>;
  /// Waits until all that has been reported since the last call is this.
  [[nodiscard]] testing::AssertionResult hears(const Reports& wanted);
  /// How many presses have been reported since then.
  [[nodiscard]] std::size_t presses() const;
  /// Presses these places one after the other and lets them go: the hot key is reported once.
  [[nodiscard]] testing::AssertionResult fires(std::uint32_t number,
                                               const std::vector<std::uint8_t>& places);
  /// The same, and it goes to the other program instead.
  [[nodiscard]] testing::AssertionResult passes(const std::vector<std::uint8_t>& places);
  /// What a window of ours would be told of a press, "<code> <flags> <text>": the last two are
  /// hexadecimal, and the text is "-" where there is none.
  [[nodiscard]] std::string typed(const std::vector<std::uint8_t>& places);

 private:
  void hotKeyPressed(platform::port::HotKeyNumber number) override {
    reports_.push_back("pressed " + std::to_string(number));
  }
  void hotKeyReleased(platform::port::HotKeyNumber number) override {
    reports_.push_back("released " + std::to_string(number));
  }

  harness::XDesk& desk_;
  TestProgram program_;
  std::unique_ptr<linux_desktop::XKeyboard> keyboard_;
  std::unique_ptr<linux_desktop::XHotKeys> xHotKeys_;
  linux_desktop::SessionHotKeys hotKeys_;
  Typewriter other_;
  Reports reports_;
};
