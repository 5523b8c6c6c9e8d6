#include "bench/ModeEffects.h"

#include <stdexcept>
#include <thread>

#include "desktop/harness/Screen.h"

namespace bench {

using namespace std::chrono_literals;

namespace {

std::uint32_t middle(const harness::Screen& screen, const harness::Rect& spot) {
  return screen.pixel(spot.centreX(), spot.centreY());
}

}  // namespace

ModeEffects::ModeEffects(ModeDesk& desk) : desk_(desk) {
  for (const harness::Rect& spot : ModeDesk::bareSpots())
    ordinaryColours_.push_back(middle(desk_.desk().screen(), spot));
  effects_ = {
      {"sink", [this](bool on) { return sink_.muted() == on; }},
      {"notifications", [this](bool on) { return pause_.isPaused() == on; }},
      {"windows", [this](bool on) { return areWindows(on); }},
      {"wallpaper", [this](bool on) { return isPicture(on); }},
      {kIcons,
       [this](bool on) {
         return harness::showsIcons(desk_.desk().screen().area(ModeDesk::iconColumn())) != on;
       }},
  };
}

ModeEffects::Seen ModeEffects::await(bool on) {
  std::vector<std::string> all;
  for (const auto& [name, test] : effects_) all.push_back(name);
  return await(on, std::move(all));
}

ModeEffects::Seen ModeEffects::await(bool on, std::vector<std::string> wanted) {
  pending_ = desk_.windows();
  Seen seen;
  const auto deadline = Clock::now() + harness::kPatience;
  for (;;) {
    std::erase_if(wanted, [&](const std::string& name) {
      const bool is = effects_.at(name)(on);
      if (is) seen.emplace(name, Clock::now());
      return is;
    });
    if (wanted.empty()) return seen;
    if (Clock::now() > deadline) {
      std::string names;
      for (const std::string& name : wanted) names += " " + name;
      throw std::runtime_error(std::string("not ") + (on ? "on" : "off") + ":" + names);
    }
    std::this_thread::sleep_for(2ms);
  }
}

bool ModeEffects::areWindows(bool hidden) {
  xcb_connection_t* x = desk_.desk().x().get();
  std::vector<xcb_get_window_attributes_cookie_t> cookies;
  for (const xcb_window_t window : pending_)
    cookies.push_back(xcb_get_window_attributes(x, window));
  std::vector<xcb_window_t> left;
  for (std::size_t i = 0; i < pending_.size(); ++i) {
    const harness::XReply<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(x, cookies[i], nullptr));
    const bool viewable = reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    if (viewable == hidden) left.push_back(pending_[i]);
  }
  pending_ = std::move(left);
  return pending_.empty();
}

bool ModeEffects::isPicture(bool chosen) {
  const std::vector<harness::Rect> spots = ModeDesk::bareSpots();
  for (std::size_t i = 0; i < spots.size(); ++i) {
    const bool ordinary =
        harness::alike(middle(desk_.desk().screen(), spots[i]), ordinaryColours_[i]);
    if (ordinary == chosen) return false;
  }
  return true;
}

}  // namespace bench
