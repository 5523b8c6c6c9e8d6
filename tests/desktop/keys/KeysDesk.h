#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "desktop/harness/XDesk.h"
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

  /// Forgets what was typed until now.
  void forget();
  /// The keys that have been let go there since, once `count` of them have been.
  [[nodiscard]] std::vector<std::uint8_t> released(std::size_t count);
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
  std::vector<std::uint8_t> released_;
};

/// An X server with the probe on it and another program that has the keyboard.
class KeysDesk {
 public:
  explicit KeysDesk(const harness::DeskOptions& options = {});

  [[nodiscard]] harness::XDesk& desk() { return desk_; }
  [[nodiscard]] const harness::XInput& input() { return desk_.input(); }
  [[nodiscard]] harness::Process& probe() { return *probe_; }
  [[nodiscard]] Typewriter& other() { return *other_; }

  /// As setxkbmap is told.
  void setLayout(const std::vector<std::string>& arguments);
  /// Returns once the probe is on the layout, by its English name, and has moved so many hot keys
  /// for that.
  [[nodiscard]] bool adapted(const std::string& layout, int moved);

  /// Waits until a hot key that is held repeats once more.
  [[nodiscard]] bool repeats();

  void tell(const std::string& command);
  [[nodiscard]] platform::OSStatus registers(std::uint32_t number, std::uint32_t keyCode,
                                             std::uint32_t modifiers);
  void unregister(std::uint32_t number);
  /// Opens the probe's own window, which has the keyboard then.
  void openWindow();

  /// Waits for a line of the probe that begins so; false when none comes.
  [[nodiscard]] bool says(const std::string& line);
  /// Presses these places one after the other and lets them go: the hot key is reported once.
  [[nodiscard]] testing::AssertionResult fires(std::uint32_t number,
                                               const std::vector<std::uint8_t>& places);
  /// The same, and it goes to the other program instead.
  [[nodiscard]] testing::AssertionResult passes(const std::vector<std::uint8_t>& places);
  /// How many lines of the probe begin so.
  [[nodiscard]] std::size_t count(const std::string& start);
  /// What the probe's window is told of a press, "<code> <flags> <text>".
  [[nodiscard]] std::string typed(const std::vector<std::uint8_t>& places);

 private:
  harness::XDesk desk_;
  std::string fifo_;
  std::unique_ptr<harness::Process> probe_;
  std::unique_ptr<Typewriter> other_;
};
