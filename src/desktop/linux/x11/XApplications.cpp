#include "desktop/linux/x11/XApplications.h"

#include <QGuiApplication>
#include <QMetaObject>
#include <algorithm>
#include <utility>

#include "desktop/linux/log/Log.h"
#include "desktop/linux/x11/HideAndShow.h"

namespace linux_desktop {
namespace {

using platform::NSApplicationActivationPolicy;
using platform::port::ApplicationInfo;

constexpr XApplications::Id kOurselves = 1;

WindowSet hiddenIn(const ClientList& list) {
  WindowSet hidden;
  for (const ClientWindow& window : list.windows) {
    if (window.isHidden()) hidden.insert(window.id);
  }
  return hidden;
}

/// The order to remember: as it is, but for windows that are hidden already, of which it is known
/// better where they were.
WindowOrder orderToRemember(const ClientList& list) {
  return orderPutBack(list.stacking, hiddenIn(list), list.knownOrder());
}

/// Who is to be active again, of the windows that go; who was it when others went, if it is none of
/// these.
xcb_window_t activeToRemember(const ClientList& list, const HideOperation::Plan& plan) {
  WindowSet going(plan.windows.begin(), plan.windows.end());
  going.insert(plan.followers.begin(), plan.followers.end());
  if (going.contains(list.active)) return list.active;
  const auto isInFront = [&](xcb_window_t id) {
    const ClientWindow* window = list.workWindow(id);
    return going.contains(id) && window != nullptr && list.isHere(*window);
  };
  const ClientWindow* active = list.workWindow(list.active);
  if (active != nullptr && isOurs(*active)) {
    // Our own panel has the keyboard from the one on top.
    const auto top = std::ranges::find_if(list.stacking.rbegin(), list.stacking.rend(), isInFront);
    if (top != list.stacking.rend()) return *top;
  }
  return hiddenIn(list).empty() ? xcb_window_t{XCB_NONE} : list.rememberedActive;
}

}  // namespace

XApplications::XApplications(XEvents& events)
    : clients_(events.server()),
      watch_(events, clients_),
      lastId_(kOurselves),
      wait_(events, clients_) {}

const ApplicationGroup* XApplications::Moment::find(Id application) const {
  const auto found = std::ranges::find(applications, application, &ApplicationGroup::id);
  return found == applications.end() ? nullptr : &*found;
}

XApplications::Moment XApplications::read() {
  Moment moment{clients_.read(), {}};
  moment.applications = applicationsOf(moment.list);
  std::map<std::string, Id> ids;
  for (ApplicationGroup& group : moment.applications) {
    const auto known = ids_.find(group.key);
    group.id = known == ids_.end() ? ++lastId_ : known->second;
    ids.emplace(group.key, group.id);
  }
  // While one window manager takes over from another, nothing is listed and all goes on running.
  if (moment.list.manager.window != XCB_NONE) ids_ = std::move(ids);
  if (!operation_) watch_.follow(moment.list);
  return moment;
}

const XApplications::Moment& XApplications::now() {
  if (!std::exchange(isFresh_, true)) {
    moment_ = read();
    queueEndOfTurn();
  }
  return *moment_;
}

std::vector<ApplicationInfo> XApplications::runningApplications() {
  const Moment& moment = now();
  if (moment.list.manager.window == XCB_NONE) {
    warnOnce("no window manager: windows of other programs cannot be hidden");
  }
  std::vector<ApplicationInfo> infos{{kOurselves,
                                      QGuiApplication::applicationDisplayName().toStdString(),
                                      NSApplicationActivationPolicy::Accessory}};
  for (const ApplicationGroup& group : moment.applications) {
    infos.push_back({group.id, group.name.empty() ? std::nullopt : std::optional(group.name),
                     group.windows.empty() ? NSApplicationActivationPolicy::Accessory
                                           : NSApplicationActivationPolicy::Regular});
  }
  return infos;
}

std::optional<XApplications::Wish> XApplications::wishFor(Id application) const {
  for (const Wishes* wishes : {&wishes_, &underWay_}) {
    if (const auto found = wishes->find(application); found != wishes->end()) return found->second;
  }
  return std::nullopt;
}

bool XApplications::isHidden(Id application) {
  const ApplicationGroup* found = now().find(application);
  const auto wish = wishFor(application);
  if (found == nullptr || wish == Wish::Show) return false;
  return found->isHidden() || (wish == Wish::Hide && found->isVisible());
}

bool XApplications::canHide() {
  return now().list.canMinimise;
}

bool XApplications::hide(Id application) {
  if (!latest().list.canMinimise) {
    warnOnce("this window manager cannot minimise: windows of other programs stay visible");
    return false;
  }
  return wish(application, Wish::Hide);
}

bool XApplications::unhide(Id application) {
  return wish(application, Wish::Show);
}

bool XApplications::wish(Id application, Wish wish) {
  const ApplicationGroup* found = latest().find(application);
  if (found == nullptr || found->windows.empty()) return false;
  // The same once more, while it is under way, must not undo what the user did meanwhile.
  if (wishFor(application) == wish) return true;
  wishes_[application] = wish;
  queueEndOfTurn();
  return true;
}

void XApplications::queueEndOfTurn() {
  if (std::exchange(turnEnds_, true)) return;
  const auto end = [this] {
    turnEnds_ = false;
    if (!operation_) carryOut();
    isFresh_ = false;
  };
  QMetaObject::invokeMethod(&context_, end, Qt::QueuedConnection);
}

void XApplications::carryOut() {
  while (!wishes_.empty() && !startHiding() && !startShowing()) {
  }
}

std::vector<const ApplicationGroup*> XApplications::take(Wish wish, const Moment& moment) {
  std::vector<const ApplicationGroup*> taken;
  std::erase_if(wishes_, [&](const auto& waiting) {
    if (waiting.second != wish) return false;
    if (const ApplicationGroup* found = moment.find(waiting.first)) {
      taken.push_back(found);
      underWay_.insert(waiting);
    }
    return true;
  });
  return taken;
}

bool XApplications::startHiding() {
  const Moment& moment = now();
  HideOperation::Plan plan;
  for (const ApplicationGroup* group : take(Wish::Hide, moment)) {
    for (const ClientWindow* window : group->windows) {
      if (!window->minimised) plan.windows.push_back(window->id);
    }
    for (const auto& [window, leader] : group->followers) {
      if (!window->minimised && !leader->minimised) plan.followers.push_back(window->id);
    }
  }
  if (plan.windows.empty()) {
    underWay_.clear();
    return false;
  }
  plan.order = orderToRemember(moment.list);
  plan.active = activeToRemember(moment.list, plan);
  plan.manager = moment.list.manager;
  watch_.pause();
  operation_ = std::make_unique<HideOperation>(wait_, std::move(plan), [this] { finished(); });
  return true;
}

bool XApplications::startShowing() {
  const Moment& moment = now();
  std::vector<xcb_window_t> windows;
  for (const ApplicationGroup* group : take(Wish::Show, moment)) {
    for (const ClientWindow* window : group->windows) {
      if (window->isHidden()) windows.push_back(window->id);
    }
    for (const auto& follower : group->followers) {
      if (follower.window->isHidden()) windows.push_back(follower.window->id);
    }
  }
  if (windows.empty()) {
    underWay_.clear();
    return false;
  }
  watch_.pause();
  operation_ = std::make_unique<ShowOperation>(wait_, std::move(windows), moment.list,
                                               [this] { finished(); });
  return true;
}

void XApplications::finished() {
  // The operation calls this from inside itself.
  QMetaObject::invokeMethod(
      &context_,
      [this] {
        operation_.reset();
        underWay_.clear();
        watch_.resume();
        // For the watch, which has to know what is hidden now, and for the wishes that wait.
        isFresh_ = clients_.refresh(moment_->list);
        watch_.follow(now().list);
        queueEndOfTurn();
      },
      Qt::QueuedConnection);
}

void XApplications::warnOnce(const char* line) {
  if (!std::exchange(warned_, true)) qCWarning(lcX11, "%s", line);
}

}  // namespace linux_desktop
