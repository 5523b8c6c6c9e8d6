#include "desktop/linux/x11/XApplications.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QMetaObject>
#include <QSysInfo>
#include <algorithm>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// Dialogs of dialogs of dialogs; ends windows that are dialogs of each other.
constexpr int kDeepestDialog = 8;

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

/// The process comes late: in a sandbox the number is an inner one, and terminals share one.
std::string keyOf(const ClientWindow& window) {
  if (!window.gtkApplicationId.empty()) return "gtk " + window.gtkApplicationId;
  const std::string at = "@" + window.machine;
  if (!window.className.empty()) return "class " + lowerCase(window.className) + at;
  if (window.leader != XCB_NONE) return "leader " + std::to_string(window.leader);
  if (window.pid) return "process " + std::to_string(*window.pid) + at;
  return "window " + std::to_string(window.id);
}

/// The window that this one is a dialog of, in the end; itself when it is none.
const ClientWindow& leaderOf(const ClientWindow& window, const ClientList& list) {
  const ClientWindow* leader = &window;
  for (int i = 0; i < kDeepestDialog; ++i) {
    const ClientWindow* parent = list.find(leader->transientFor);
    if (parent == nullptr) break;
    leader = parent;
  }
  return *leader;
}

/// What hiding took away is brought back, whatever its program has made of it since.
bool isOrdinary(const ClientWindow& window) {
  return window.kind == ClientKind::Normal || window.kind == ClientKind::Dialog ||
         window.isHidden();
}

/// What is never touched counts for nothing but that the application is there.
void add(const ClientWindow& window, const ClientWindow& leader, ApplicationGroup& group) {
  if (window.kind == ClientKind::Furniture || !isOrdinary(leader)) return;
  if (&leader == &window) {
    group.windows.push_back(&window);
  } else {
    group.followers.push_back({&window, &leader});
  }
}

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

bool isOurs(const ClientWindow& window) {
  static const std::string machine = QSysInfo::machineHostName().toStdString();
  const bool ownProcess = window.pid && *window.pid == QCoreApplication::applicationPid() &&
                          (window.machine.empty() || window.machine == machine);
  return ownProcess || lowerCase(window.className) == "calmdeck";
}

bool ApplicationGroup::isHidden() const {
  return std::ranges::any_of(windows, &ClientWindow::isHidden) ||
         std::ranges::any_of(followers,
                             [](const Follower& follower) { return follower.window->isHidden(); });
}

bool ApplicationGroup::isVisible() const {
  return !std::ranges::all_of(windows, &ClientWindow::minimised);
}

std::vector<ApplicationGroup> applicationsOf(const ClientList& list) {
  std::vector<ApplicationGroup> groups;
  for (const ClientWindow& window : list.windows) {
    const ClientWindow& leader = leaderOf(window, list);
    if (isOurs(window) || isOurs(leader)) continue;
    const std::string key = keyOf(leader);
    auto group = std::ranges::find(groups, key, &ApplicationGroup::key);
    if (group == groups.end()) group = groups.insert(group, {.key = key, .name = window.className});
    add(window, leader, *group);
  }
  return groups;
}

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
  plan.minimisesLater = moment.list.habits.minimisesLater;
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
