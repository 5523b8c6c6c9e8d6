#include "desktop/keys/KeysDesk.h"

#include <xcb/xinput.h>

#include <QKeyEvent>
#include <QLoggingCategory>
#include <QString>
#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "desktop/linux/x11/Xkb.h"

using harness::XReply;

Typewriter::Typewriter(harness::XDesk& desk) : desk_(desk), x_(desk.server().display()) {
  // Others are told of modifiers that stand for the second layout.
  xcb_discard_reply(x_.get(), xcb_xkb_use_extension(x_.get(), 1, 0).sequence);
  const xcb_window_t window = xcb_generate_id(x_.get());
  const std::uint32_t values[] = {1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE};
  xcb_create_window(x_.get(), XCB_COPY_FROM_PARENT, window, x_.root(), 600, 500, 100, 100, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
  xcb_map_window(x_.get(), window);
  xcb_set_input_focus(x_.get(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
  const XReply<xcb_get_input_focus_reply_t> taken(
      xcb_get_input_focus_reply(x_.get(), xcb_get_input_focus(x_.get()), nullptr));
  if (!taken || taken->focus != window) throw std::runtime_error("the keyboard was not given");
}

void Typewriter::takeEvents() {
  while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(x_.get())}) {
    const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(*event);
    const int type = event->response_type & 0x7f;
    if (type == XCB_KEY_PRESS) presses_.push_back({key.detail, key.state});
    if (type == XCB_KEY_RELEASE) released_.push_back(key.detail);
  }
}

void Typewriter::forget() {
  // Behind the answer there is nothing left on its way.
  const XReply<xcb_get_input_focus_reply_t> answer(
      xcb_get_input_focus_reply(x_.get(), xcb_get_input_focus(x_.get()), nullptr));
  takeEvents();
  presses_.clear();
  released_.clear();
}

std::vector<std::uint8_t> Typewriter::released(std::size_t count) {
  EXPECT_TRUE(desk_.until([&] {
    takeEvents();
    return released_.size() >= count;
  }));
  return released_;
}

bool Typewriter::grabs(std::uint8_t keycode, std::uint16_t modifiers) {
  const auto cookie = xcb_grab_key_checked(x_.get(), 0, x_.root(), modifiers, keycode,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  return XReply<xcb_generic_error_t>(xcb_request_check(x_.get(), cookie)) == nullptr;
}

void Typewriter::ungrab(std::uint8_t keycode, std::uint16_t modifiers) {
  xcb_ungrab_key(x_.get(), keycode, x_.root(), modifiers);
  const XReply<xcb_get_input_focus_reply_t> done(
      xcb_get_input_focus_reply(x_.get(), xcb_get_input_focus(x_.get()), nullptr));
}

bool Typewriter::grabsByXInput(std::uint8_t keycode, std::uint32_t modifiers) {
  constexpr std::uint32_t kEvents = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
  xcb_discard_reply(x_.get(), xcb_input_xi_query_version(x_.get(), 2, 0).sequence);
  const auto cookie = xcb_input_xi_passive_grab_device(
      x_.get(), XCB_CURRENT_TIME, x_.root(), XCB_NONE, keycode, XCB_INPUT_DEVICE_ALL_MASTER, 1, 1,
      XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_GRAB_MODE_ASYNC, 0, &kEvents,
      &modifiers);
  const XReply<xcb_input_xi_passive_grab_device_reply_t> refused(
      xcb_input_xi_passive_grab_device_reply(x_.get(), cookie, nullptr));
  return refused && refused->num_modifiers == 0;
}

void Typewriter::ungrabByXInput(std::uint8_t keycode, std::uint32_t modifiers) {
  xcb_input_xi_passive_ungrab_device(x_.get(), x_.root(), keycode, XCB_INPUT_DEVICE_ALL_MASTER, 1,
                                     XCB_INPUT_GRAB_TYPE_KEYCODE, &modifiers);
  forget();
}

namespace {

/// All tests of this process share it, since Qt keeps its session bus for as long as that lives.
harness::XDesk& surroundings() {
  static harness::XDesk desk;
  return desk;
}

harness::Environment environmentOf(const char* session) {
  harness::Environment environment = surroundings().environment();
  environment["XDG_CURRENT_DESKTOP"] = session;
  return environment;
}

std::string hexadecimal(const std::optional<std::string>& text) {
  if (!text) return "-";
  std::ostringstream codes;
  for (const char32_t code : QString::fromStdString(*text).toStdU32String())
    codes << std::hex << static_cast<std::uint32_t>(code);
  return codes.str();
}

}  // namespace

KeysDesk::KeysDesk(const char* session)
    : desk_(surroundings()),
      program_(environmentOf(session)),
      keyboard_(linux_desktop::XKeyboard::open(program_.events())),
      xHotKeys_(linux_desktop::XHotKeys::open(program_.events(), *keyboard_)),
      hotKeys_(xHotKeys_.get()),
      other_(desk_) {
  QLoggingCategory::setFilterRules(QStringLiteral("calmdeck.keys.debug=true"));
  hotKeys_.setClient(this);
  setLayout({"-layout", "us", "-option", ""});
  // With the first key the server changes keyboards, which programs take for another layout.
  input().places({place::kMenu});
}

void KeysDesk::setLayout(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "setxkbmap");
  const auto result = desk_.run(std::move(arguments));
  EXPECT_TRUE(result.succeeded()) << result.errorOutput;
}

bool KeysDesk::adapted(const std::string& layout, int moved) {
  return program_.logs("is " + layout + ".*, " + std::to_string(moved) + " moved$");
}

platform::OSStatus KeysDesk::registers(std::uint32_t number, std::uint32_t keyCode,
                                       std::uint32_t modifiers) {
  program_.turn();
  return hotKeys_.registerHotKey(number, keyCode, modifiers, "Does something");
}

testing::AssertionResult KeysDesk::hears(const Reports& wanted) {
  const bool heard = until([&] { return reports_ == wanted; });
  const Reports all = std::exchange(reports_, {});
  if (heard) return testing::AssertionSuccess();
  return testing::AssertionFailure() << testing::PrintToString(all) << program_.log();
}

std::size_t KeysDesk::presses() const {
  return static_cast<std::size_t>(std::ranges::count_if(
      reports_, [](const std::string& report) { return report.starts_with("pressed"); }));
}

testing::AssertionResult KeysDesk::fires(std::uint32_t number,
                                         const std::vector<std::uint8_t>& places) {
  input().places(places);
  const std::string name = std::to_string(number);
  return hears({"pressed " + name, "released " + name});
}

testing::AssertionResult KeysDesk::passes(const std::vector<std::uint8_t>& places) {
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

std::string KeysDesk::typed(const std::vector<std::uint8_t>& places) {
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
