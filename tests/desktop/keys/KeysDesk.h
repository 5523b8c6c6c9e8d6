#pragma once

#include <gtest/gtest.h>
#include <xcb/xinput.h>

#include <QKeyEvent>
#include <QLoggingCategory>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "desktop/harness/XDesk.h"
#include "desktop/linux/keys/SessionHotKeys.h"
#include "desktop/linux/x11/XHotKeys.h"
#include "desktop/linux/x11/XKeyboard.h"
#include "desktop/linux/x11/Xkb.h"
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
  explicit Typewriter(harness::XDesk& desk) : desk_(desk), x_(desk.server().display()) {
    // Others are told of modifiers that stand for the second layout.
    xcb_discard_reply(x_.get(), xcb_xkb_use_extension(x_.get(), 1, 0).sequence);
    const xcb_window_t window = xcb_generate_id(x_.get());
    const std::uint32_t values[] = {1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE};
    xcb_create_window(x_.get(), XCB_COPY_FROM_PARENT, window, x_.root(), 600, 500, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(x_.get(), window);
    xcb_set_input_focus(x_.get(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    if (focus() != window) throw std::runtime_error("the keyboard was not given");
  }

  struct Press {
    std::uint8_t key;
    std::uint16_t state;
  };

  /// Forgets what was typed until now.
  void forget() {
    static_cast<void>(focus());
    takeEvents();
    presses_.clear();
    released_.clear();
  }
  /// The keys that have been let go there since, once `count` of them have been.
  [[nodiscard]] std::vector<std::uint8_t> released(std::size_t count) {
    EXPECT_TRUE(desk_.until([&] {
      takeEvents();
      return released_.size() >= count;
    }));
    return released_;
  }
  /// What was pressed there before that.
  [[nodiscard]] const std::vector<Press>& presses() const { return presses_; }
  /// Grabs as other programs do; false when somebody has it already.
  [[nodiscard]] bool grabs(std::uint8_t keycode, std::uint16_t modifiers) {
    const auto cookie = xcb_grab_key_checked(x_.get(), 0, x_.root(), modifiers, keycode,
                                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    return harness::XReply<xcb_generic_error_t>(xcb_request_check(x_.get(), cookie)) == nullptr;
  }
  void ungrab(std::uint8_t keycode, std::uint16_t modifiers) {
    xcb_ungrab_key(x_.get(), keycode, x_.root(), modifiers);
    static_cast<void>(focus());
  }
  /// The same by XInput, which the server keeps apart.
  [[nodiscard]] bool grabsByXInput(std::uint8_t keycode, std::uint32_t modifiers) {
    constexpr std::uint32_t kEvents = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    xcb_discard_reply(x_.get(), xcb_input_xi_query_version(x_.get(), 2, 0).sequence);
    const auto cookie = xcb_input_xi_passive_grab_device(
        x_.get(), XCB_CURRENT_TIME, x_.root(), XCB_NONE, keycode, XCB_INPUT_DEVICE_ALL_MASTER, 1, 1,
        XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_GRAB_MODE_ASYNC, 0, &kEvents,
        &modifiers);
    const harness::XReply<xcb_input_xi_passive_grab_device_reply_t> refused(
        xcb_input_xi_passive_grab_device_reply(x_.get(), cookie, nullptr));
    return refused && refused->num_modifiers == 0;
  }
  void ungrabByXInput(std::uint8_t keycode, std::uint32_t modifiers) {
    xcb_input_xi_passive_ungrab_device(x_.get(), x_.root(), keycode, XCB_INPUT_DEVICE_ALL_MASTER, 1,
                                       XCB_INPUT_GRAB_TYPE_KEYCODE, &modifiers);
    forget();
  }

 private:
  /// Behind the answer there is nothing left on its way.
  [[nodiscard]] xcb_window_t focus() const {
    const harness::XReply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(x_.get(), xcb_get_input_focus(x_.get()), nullptr));
    return answer ? answer->focus : xcb_window_t{XCB_NONE};
  }
  void takeEvents() {
    while (const harness::XReply<xcb_generic_event_t> event{xcb_poll_for_event(x_.get())}) {
      const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(*event);
      const int type = event->response_type & 0x7f;
      if (type == XCB_KEY_PRESS) presses_.push_back({key.detail, key.state});
      if (type == XCB_KEY_RELEASE) released_.push_back(key.detail);
    }
  }

  harness::XDesk& desk_;
  harness::XConnection x_;
  std::vector<Press> presses_;
  std::vector<std::uint8_t> released_;
};

/// An X server, the keyboard's classes in this process, and another program that has the keyboard.
class KeysDesk : public platform::port::HotKeysClient {
 public:
  /// `session` as XDG_CURRENT_DESKTOP has it.
  explicit KeysDesk(const char* session = "") : program_(environmentOf(session)) {
    QLoggingCategory::setFilterRules(QStringLiteral("calmdeck.keys.debug=true"));
    hotKeys_.setClient(this);
    setLayout({"-layout", "us", "-option", ""});
    // With the first key the server changes keyboards, which programs take for another layout.
    input().places({place::kMenu});
  }

  [[nodiscard]] harness::XDesk& desk() { return desk_; }
  [[nodiscard]] const harness::XInput& input() { return desk_.input(); }
  [[nodiscard]] TestProgram& program() { return program_; }
  [[nodiscard]] Typewriter& other() { return other_; }
  [[nodiscard]] bool until(const std::function<bool()>& fact) { return program_.until(fact); }

  /// As setxkbmap is told.
  void setLayout(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "setxkbmap");
    desk_.mustRun(std::move(arguments));
  }
  /// Returns once we are on the layout, by its English name, and have moved so many hot keys for
  /// that.
  [[nodiscard]] bool adapted(const std::string& layout, int moved) {
    return program_.logs("is " + layout + ".*, " + std::to_string(moved) + " moved$");
  }
  /// Waits until a hot key that is held repeats once more.
  [[nodiscard]] bool repeats() { return program_.logs("repeats$"); }

  [[nodiscard]] platform::OSStatus registers(std::uint32_t number, std::uint32_t keyCode,
                                             std::uint32_t modifiers) {
    program_.turn();
    return hotKeys_.registerHotKey(number, keyCode, modifiers, "Does something");
  }
  void unregister(std::uint32_t number) { hotKeys_.unregisterHotKey(number); }

  using Reports = std::vector<std::string>;
  /// Waits until all that has been reported since the last call is this.
  [[nodiscard]] testing::AssertionResult hears(const Reports& wanted) {
    const bool heard = until([&] { return reports_ == wanted; });
    const Reports all = std::exchange(reports_, {});
    if (heard) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(all) << program_.log();
  }
  /// How many presses have been reported since then.
  [[nodiscard]] std::size_t presses() const {
    return static_cast<std::size_t>(std::ranges::count_if(
        reports_, [](const std::string& report) { return report.starts_with("pressed"); }));
  }
  /// Presses these places one after the other and lets them go: the hot key is reported once.
  [[nodiscard]] testing::AssertionResult fires(std::uint32_t number,
                                               const std::vector<std::uint8_t>& places) {
    input().places(places);
    const std::string name = std::to_string(number);
    return hears({"pressed " + name, "released " + name});
  }
  /// The same, and it goes to the other program instead.
  [[nodiscard]] testing::AssertionResult passes(const std::vector<std::uint8_t>& places) {
    other_.forget();
    input().places(places);
    const std::vector<std::uint8_t> seen = other_.released(places.size());
    // Behind the answer nothing is on its way to us.
    static_cast<void>(program_.server().time());
    program_.turn();
    if (auto silence = hears({}); !silence) return silence;
    if (seen == std::vector(places.rbegin(), places.rend())) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "typed were " << testing::PrintToString(seen);
  }
  /// What a window of ours would be told of a press, "<code> <flags> <text>": the last two are
  /// hexadecimal, and the text is "-" where there is none.
  [[nodiscard]] std::string typed(const std::vector<std::uint8_t>& places) {
    other_.forget();
    input().places(places);
    static_cast<void>(other_.released(places.size()));
    program_.turn();
    for (const auto& [key, state] : other_.presses()) {
      const QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, key, 0, state);
      const auto event = keyboard_->translate(press);
      if (!event) continue;
      std::ostringstream line;
      line << event->keyCode << ' ' << std::hex << event->modifierFlags << ' '
           << hexadecimal(event->charactersIgnoringModifiers);
      return line.str();
    }
    return "nothing";
  }

 private:
  void hotKeyPressed(platform::port::HotKeyNumber number) override {
    reports_.push_back("pressed " + std::to_string(number));
  }
  void hotKeyReleased(platform::port::HotKeyNumber number) override {
    reports_.push_back("released " + std::to_string(number));
  }

  /// All tests of this process share it, since Qt keeps its session bus for as long as that lives.
  static harness::XDesk& surroundings() {
    static harness::XDesk desk;
    return desk;
  }
  static harness::Environment environmentOf(const char* session) {
    harness::Environment environment = surroundings().environment();
    environment["XDG_CURRENT_DESKTOP"] = session;
    return environment;
  }
  static std::string hexadecimal(const std::optional<std::string>& text) {
    if (!text) return "-";
    std::ostringstream codes;
    for (const char32_t code : QString::fromStdString(*text).toStdU32String())
      codes << std::hex << static_cast<std::uint32_t>(code);
    return codes.str();
  }

  harness::XDesk& desk_ = surroundings();
  TestProgram program_;
  std::unique_ptr<linux_desktop::XKeyboard> keyboard_ =
      linux_desktop::XKeyboard::open(program_.events());
  std::unique_ptr<linux_desktop::XHotKeys> xHotKeys_ =
      linux_desktop::XHotKeys::open(program_.events(), *keyboard_);
  linux_desktop::SessionHotKeys hotKeys_{xHotKeys_.get()};
  Typewriter other_{desk_};
  Reports reports_;
};
