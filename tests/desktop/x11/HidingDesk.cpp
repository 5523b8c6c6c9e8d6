#include "desktop/x11/HidingDesk.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::uint32_t kFromPager = 2;

}  // namespace

// --- Windows ---

xcb_window_t HidingDesk::open(const harness::XWindow& window) {
  const xcb_window_t id = x().open(window);
  const auto isThere = [&] {
    const auto info = windows().info(id);
    return info && info->managed && info->viewable;
  };
  EXPECT_TRUE(XDesk::until(isThere)) << window.name;
  return id;
}

Windows HidingDesk::openMany(int count) {
  Windows windows;
  for (int i = 0; i < count; ++i) {
    windows.push_back(x().open({.name = "many " + std::to_string(i),
                                .className = "Many" + std::to_string(i % 10),
                                .area = {10 + i % 50 * 8, 10 + i % 40 * 6, 120, 90}}));
  }
  EXPECT_TRUE(XDesk::until([&] { return stacking(windows).size() == windows.size(); }));
  return windows;
}

void HidingDesk::close(xcb_window_t window) {
  xcb_destroy_window(x().get(), window);
  EXPECT_TRUE(XDesk::until([&] { return stacking({window}).empty(); }));
}

void HidingDesk::moveToWorkspace(xcb_window_t window, std::uint32_t number) {
  x().askWindowManager(window, "_NET_WM_DESKTOP", {number, kFromPager});
  EXPECT_TRUE(XDesk::until([&] { return workspace(window) == number; }));
}

void HidingDesk::minimise(xcb_window_t window) {
  constexpr std::uint32_t kIconic = 3;
  x().askWindowManager(window, "WM_CHANGE_STATE", {kIconic});
  EXPECT_TRUE(XDesk::until([&] { return isMinimised(window); }));
}

void HidingDesk::activate(xcb_window_t window) {
  EXPECT_TRUE(XDesk::activate(window));
  if (program_) program_->turn();
}

// --- The program ---

void HidingDesk::startProgram() {
  applications_.reset();
  program_.reset();
  program_.emplace(environment());
  applications_.emplace(program_->events());
}

std::vector<platform::port::ApplicationInfo> HidingDesk::list() {
  program_->turn();
  return applications_->runningApplications();
}

std::vector<platform::port::ApplicationId> HidingDesk::regular() {
  std::vector<platform::port::ApplicationId> ids;
  for (const auto& info : applications_->runningApplications()) {
    if (info.activationPolicy == platform::NSApplicationActivationPolicy::Regular)
      ids.push_back(info.id);
  }
  return ids;
}

void HidingDesk::hide() {
  for (const auto id : regular()) EXPECT_TRUE(applications_->hide(id));
}

void HidingDesk::show() {
  for (const auto id : regular()) {
    if (applications_->isHidden(id)) applications_->unhide(id);
  }
}

void HidingDesk::hideAsTheMode() {
  hide();
  program_->turn();
  hide();
}

unsigned HidingDesk::requests() {
  const unsigned sequence = xcb_no_operation(program_->server().get()).sequence;
  return sequence - std::exchange(sequence_, sequence);
}

// --- What is seen ---

bool HidingDesk::isMinimised(xcb_window_t window) const {
  const auto info = windows().info(window);
  return info && info->has("HIDDEN");
}

bool HidingDesk::isMarked(xcb_window_t window) const {
  return x().number(window, "_CALMDECK_HIDDEN").has_value();
}

bool HidingDesk::hasKeyboard(xcb_window_t window) const {
  const harness::XReply<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(x().get(), xcb_get_input_focus(x().get()), nullptr));
  return reply && reply->focus == window;
}

bool HidingDesk::isSeen(xcb_window_t window) const {
  const auto info = windows().info(window);
  // Mutter leaves those mapped that it does not show.
  return info && info->viewable && !info->has("HIDDEN");
}

std::uint32_t HidingDesk::workspace(xcb_window_t window) const {
  return x().number(window, "_NET_WM_DESKTOP").value_or(UINT32_MAX);
}

bool HidingDesk::allMinimised(const Windows& windows) {
  const auto isSo = [this](xcb_window_t window) { return isMinimised(window); };
  return until([&] { return std::ranges::all_of(windows, isSo); });
}

bool HidingDesk::allShown(const Windows& windows) {
  // The mark goes last, when all is put back.
  const auto isSo = [this](xcb_window_t window) {
    return !isMinimised(window) && !isMarked(window);
  };
  return until([&] { return std::ranges::all_of(windows, isSo); });
}

Windows HidingDesk::stacking(const Windows& among) const {
  Windows order = windows().stacking();
  // It lists them the wrong way round.
  if (managerKind() == harness::WindowManager::Jwm) std::ranges::reverse(order);
  std::erase_if(
      order, [&](xcb_window_t window) { return std::ranges::find(among, window) == among.end(); });
  return order;
}
