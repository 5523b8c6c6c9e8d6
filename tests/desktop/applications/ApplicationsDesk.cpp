#include "desktop/applications/ApplicationsDesk.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

constexpr std::uint32_t kFromPager = 2;

harness::DeskOptions optionsFor(harness::WindowManager windowManager) {
  harness::DeskOptions options;
  options.windowManager = windowManager;
  options.sessionBus = windowManager == harness::WindowManager::Xfwm4 ||
                       windowManager == harness::WindowManager::Marco;
  return options;
}

}  // namespace

std::string nameOfWindowManager(const testing::TestParamInfo<harness::WindowManager>& info) {
  constexpr const char* kNames[] = {"Openbox", "Xfwm4", "Marco", "Icewm"};
  return kNames[info.index];
}

ApplicationsDesk::ApplicationsDesk(harness::WindowManager windowManager)
    : desk_(optionsFor(windowManager)), fifo_(desk_.home().home() / "commands") {
  if (::mkfifo(fifo_.c_str(), 0600) != 0) throw std::runtime_error("no fifo");
}

void ApplicationsDesk::setAtom(xcb_window_t window, const std::string& property,
                               const std::string& value) {
  if (value.empty()) return;
  const xcb_atom_t atom = desk_.x().atom(property + "_" + value);
  xcb_change_property(desk_.x().get(), XCB_PROP_MODE_REPLACE, window, desk_.x().atom(property),
                      XCB_ATOM_ATOM, 32, 1, &atom);
}

xcb_window_t ApplicationsDesk::create(const ForeignWindow& window) {
  xcb_connection_t* x = desk_.x().get();
  const xcb_window_t id = xcb_generate_id(x);
  const auto& area = window.area;
  xcb_create_window(x, XCB_COPY_FROM_PARENT, id, desk_.x().root(),
                    static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                    static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height),
                    0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  const auto text = [&](xcb_atom_t name, const std::string& value) {
    if (value.empty()) return;
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, id, name, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(value.size()), value.data());
  };
  text(XCB_ATOM_WM_NAME, window.name);
  text(XCB_ATOM_WM_CLASS, "instance" + std::string(1, '\0') + window.className + '\0');
  text(desk_.x().atom("_GTK_APPLICATION_ID"), window.gtkApplicationId);
  // The user's own position, so that no window manager looks for a free one.
  constexpr std::array<std::uint32_t, 18> kUserPosition{1};
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NORMAL_HINTS,
                      XCB_ATOM_WM_SIZE_HINTS, 32, kUserPosition.size(), kUserPosition.data());
  setAtom(id, "_NET_WM_WINDOW_TYPE", window.type);
  setAtom(id, "_NET_WM_STATE", window.state);
  if (window.transientFor != XCB_NONE) {
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW,
                        32, 1, &window.transientFor);
  }
  xcb_map_window(x, id);
  xcb_flush(x);
  return id;
}

bool ApplicationsDesk::isManaged(xcb_window_t window) const {
  const auto info = desk_.windows().info(window);
  return info && info->managed && info->viewable;
}

xcb_window_t ApplicationsDesk::open(const ForeignWindow& window) {
  const xcb_window_t id = create(window);
  EXPECT_TRUE(desk_.until([&] { return isManaged(id); })) << window.name;
  return id;
}

std::vector<xcb_window_t> ApplicationsDesk::openMany(int count) {
  std::vector<xcb_window_t> windows;
  for (int i = 0; i < count; ++i) {
    ForeignWindow window;
    window.name = "many " + std::to_string(i);
    window.className = "Many" + std::to_string(i % 10);
    window.area = {10 + i % 50 * 8, 10 + i % 40 * 6, 120, 90};
    windows.push_back(create(window));
  }
  EXPECT_TRUE(desk_.until([&] { return stacking(windows).size() == windows.size(); }));
  return windows;
}

xcb_window_t ApplicationsDesk::openProgram(const std::string& title, const harness::Rect& area) {
  return desk_.openWindow(title, area).id;
}

void ApplicationsDesk::moveToWorkspace(xcb_window_t window, std::uint32_t number) {
  desk_.x().askWindowManager(window, "_NET_WM_DESKTOP", {number, kFromPager});
  EXPECT_TRUE(desk_.until([&] { return workspace(window) == number; }));
}

void ApplicationsDesk::minimise(xcb_window_t window) {
  constexpr std::uint32_t kIconic = 3;
  desk_.x().askWindowManager(window, "WM_CHANGE_STATE", {kIconic});
  EXPECT_TRUE(desk_.until([&] { return isMinimised(window); }));
}

void ApplicationsDesk::activate(xcb_window_t window) {
  desk_.windows().activate(window);
  EXPECT_TRUE(desk_.until([&] { return desk_.windows().active() == window; }));
}

void ApplicationsDesk::startProbe() {
  probe_ = desk_.start({APPLICATIONS_PROBE, fifo_});
  EXPECT_TRUE(probe_->waitForLine("^up$")) << probe_->errorOutput();
}

void ApplicationsDesk::tell(const std::string& commands) {
  std::ofstream(fifo_) << commands << std::endl;
  EXPECT_TRUE(probe_->waitForLine("^done$")) << probe_->errorOutput();
}

std::vector<std::string> ApplicationsDesk::list() {
  const std::size_t before = probe_->output().size();
  tell("list");
  std::istringstream lines(probe_->output().substr(before));
  std::vector<std::string> applications;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("app ")) applications.push_back(line.substr(4));
  }
  return applications;
}

ApplicationsDesk::Cost ApplicationsDesk::cost() {
  std::ofstream(fifo_) << "cost" << std::endl;
  const auto line = probe_->waitForLine("^cost ").value_or("");
  Cost cost{-1, -1};
  std::istringstream(line.substr(std::min<std::size_t>(line.size(), 5))) >> cost.requests >>
      cost.roundTrips;
  EXPECT_TRUE(probe_->waitForLine("^done$"));
  return cost;
}

bool ApplicationsDesk::isMinimised(xcb_window_t window) const {
  const auto info = desk_.windows().info(window);
  return info && info->has("HIDDEN");
}

bool ApplicationsDesk::isMarked(xcb_window_t window) const {
  return desk_.x().number(window, "_CALMDECK_HIDDEN").has_value();
}

bool ApplicationsDesk::hasKeyboard(xcb_window_t window) const {
  const harness::XReply<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(desk_.x().get(), xcb_get_input_focus(desk_.x().get()), nullptr));
  return reply && reply->focus == window;
}

std::uint32_t ApplicationsDesk::workspace(xcb_window_t window) const {
  return desk_.x().number(window, "_NET_WM_DESKTOP").value_or(UINT32_MAX);
}

std::uint32_t ApplicationsDesk::currentWorkspace() const {
  return desk_.x().number(desk_.x().root(), "_NET_CURRENT_DESKTOP").value_or(UINT32_MAX);
}

testing::AssertionResult ApplicationsDesk::allMinimised(const std::vector<xcb_window_t>& windows) {
  const auto test = [&](xcb_window_t window) { return isMinimised(window); };
  if (desk_.until([&] { return std::ranges::all_of(windows, test); }))
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << std::ranges::count_if(windows, test) << " are minimised";
}

testing::AssertionResult ApplicationsDesk::allShown(const std::vector<xcb_window_t>& windows) {
  // The mark goes last, when all is put back.
  const auto test = [&](xcb_window_t window) { return !isMinimised(window) && !isMarked(window); };
  if (desk_.until([&] { return std::ranges::all_of(windows, test); }))
    return testing::AssertionSuccess();
  auto failure = testing::AssertionFailure()
                 << std::ranges::count_if(windows, test) << " are shown";
  for (const xcb_window_t window : windows) {
    if (!test(window)) failure << "; " << window << (isMarked(window) ? " is marked" : " is not");
  }
  return failure;
}

std::vector<xcb_window_t> ApplicationsDesk::stacking(const std::vector<xcb_window_t>& among) const {
  std::vector<xcb_window_t> order = desk_.windows().stacking();
  std::erase_if(
      order, [&](xcb_window_t window) { return std::ranges::find(among, window) == among.end(); });
  return order;
}
