#include "desktop/keys/KeysDesk.h"

#include <sys/stat.h>
#include <xcb/xinput.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

using harness::Stream;
using harness::XReply;

Typewriter::Typewriter(harness::XDesk& desk) : desk_(desk), x_(desk.server().display()) {
  const xcb_window_t window = xcb_generate_id(x_.get());
  const std::uint32_t values[] = {1, XCB_EVENT_MASK_KEY_RELEASE};
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
    if ((event->response_type & 0x7f) != XCB_KEY_RELEASE) continue;
    released_.push_back(reinterpret_cast<const xcb_key_release_event_t&>(*event).detail);
  }
}

void Typewriter::forget() {
  // Behind the answer there is nothing left on its way.
  const XReply<xcb_get_input_focus_reply_t> answer(
      xcb_get_input_focus_reply(x_.get(), xcb_get_input_focus(x_.get()), nullptr));
  takeEvents();
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

KeysDesk::KeysDesk(const harness::DeskOptions& options)
    : desk_(options), fifo_(desk_.home().home() / "commands") {
  setLayout({"us"});
  // With the first key the server changes keyboards, which programs take for another layout.
  input().places({place::kMenu});
  if (::mkfifo(fifo_.c_str(), 0600) != 0) throw std::runtime_error("no fifo");
  probe_ = desk_.start({KEYS_PROBE, fifo_}, {{"QT_LOGGING_RULES", "calmdeck.keys.debug=true"}});
  if (!probe_->waitForLine("^up$")) throw std::runtime_error(probe_->errorOutput());
  other_ = std::make_unique<Typewriter>(desk_);
}

void KeysDesk::setLayout(const std::vector<std::string>& arguments) {
  std::vector<std::string> argv{"setxkbmap"};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  const auto result = desk_.run(argv);
  EXPECT_TRUE(result.succeeded()) << result.errorOutput;
}

bool KeysDesk::adapted(const std::string& layout, int moved) {
  const std::string line = "is " + layout + ".*, " + std::to_string(moved) + " moved$";
  return probe_->waitForLine(line, harness::kPatience, Stream::Error).has_value();
}

bool KeysDesk::repeats() {
  return probe_->waitForLine("repeats$", harness::kPatience, Stream::Error).has_value();
}

void KeysDesk::tell(const std::string& command) {
  std::ofstream(fifo_) << command << std::endl;
}

platform::OSStatus KeysDesk::registers(std::uint32_t number, std::uint32_t keyCode,
                                       std::uint32_t modifiers) {
  tell("register " + std::to_string(number) + " " + std::to_string(keyCode) + " " +
       std::to_string(modifiers));
  const auto line = probe_->waitForLine("^status ");
  return line ? std::stoi(line->substr(7)) : -1;
}

void KeysDesk::unregister(std::uint32_t number) {
  tell("unregister " + std::to_string(number));
  EXPECT_TRUE(probe_->waitForLine("^unregistered$"));
}

void KeysDesk::openWindow() {
  tell("window");
  EXPECT_TRUE(probe_->waitForLine("^focused$"));
}

bool KeysDesk::says(const std::string& line) {
  return probe_->waitForLine("^" + line).has_value();
}

testing::AssertionResult KeysDesk::fires(std::uint32_t number,
                                         const std::vector<std::uint8_t>& places) {
  const std::string name = std::to_string(number);
  const std::size_t before = count("pressed " + name);
  input().places(places);
  if (!says("released " + name + "$")) {
    return testing::AssertionFailure()
           << "not reported: hot key " << number << probe_->output() << probe_->errorOutput();
  }
  const std::size_t times = count("pressed " + name) - before;
  if (times == 1) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "pressed " << times << " times: hot key " << number;
}

testing::AssertionResult KeysDesk::passes(const std::vector<std::uint8_t>& places) {
  const std::size_t before = count("pressed");
  other_->forget();
  input().places(places);
  const std::vector<std::uint8_t> seen = other_->released(places.size());
  if (count("pressed") != before) return testing::AssertionFailure() << "it was reported";
  if (seen == std::vector(places.rbegin(), places.rend())) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "typed were " << testing::PrintToString(seen);
}

std::size_t KeysDesk::count(const std::string& start) {
  std::size_t found = 0;
  std::istringstream lines(probe_->output());
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with(start)) ++found;
  return found;
}

std::string KeysDesk::typed(const std::vector<std::uint8_t>& places) {
  input().places(places);
  return probe_->waitForLine("^key ").value_or("key nothing").substr(4);
}
