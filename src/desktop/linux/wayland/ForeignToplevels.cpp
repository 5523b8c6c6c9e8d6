#include "desktop/linux/wayland/ForeignToplevels.h"

#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <span>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

// From the third on it tells which windows are dialogs.
constexpr std::uint32_t kManagerVersion = 3;
constexpr std::uint32_t kSeatVersion = 1;
/// Until windows that do not turn are left as they are.
constexpr std::chrono::seconds kPatience{1};

}  // namespace

ForeignToplevel::ForeignToplevel(WaylandProxy<zwlr_foreign_toplevel_handle_v1> handle,
                                 Client client)
    : handle_(std::move(handle)), client_(std::move(client)) {
  listen();
}

void ForeignToplevel::listen() {
  static constexpr auto self = [](void* toplevel) {
    return static_cast<ForeignToplevel*>(toplevel);
  };
  static constexpr zwlr_foreign_toplevel_handle_v1_listener kListener{
      [](void* toplevel, zwlr_foreign_toplevel_handle_v1*, const char* title) {
        self(toplevel)->title_ = QString::fromUtf8(title);
      },
      [](void* toplevel, zwlr_foreign_toplevel_handle_v1*, const char* id) {
        self(toplevel)->application_ = QString::fromUtf8(id);
      },
      [](void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {},
      [](void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {},
      [](void* toplevel, zwlr_foreign_toplevel_handle_v1*, wl_array* states) {
        self(toplevel)->setStates(*states);
      },
      [](void* toplevel, zwlr_foreign_toplevel_handle_v1*) { self(toplevel)->described(); },
      [](void* toplevel, zwlr_foreign_toplevel_handle_v1*) {
        const auto closed = self(toplevel)->client_.closed;
        closed(*self(toplevel));
      },
      [](void* toplevel, zwlr_foreign_toplevel_handle_v1*,
         zwlr_foreign_toplevel_handle_v1* parent) {
        self(toplevel)->hasParent_ = parent != nullptr;
      }};
  zwlr_foreign_toplevel_handle_v1_add_listener(handle_.get(), &kListener, this);
}

void ForeignToplevel::setStates(const wl_array& states) {
  const std::span all(static_cast<const std::uint32_t*>(states.data),
                      states.size / sizeof(std::uint32_t));
  const auto has = [&](std::uint32_t state) { return std::ranges::find(all, state) != all.end(); };
  told_.minimised = has(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED);
  told_.active = has(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED);
}

void ForeignToplevel::described() {
  const State before = std::exchange(state_, told_);
  client_.changed(*this, before);
}

bool ForeignToplevel::isOurs() const {
  return application_ == QGuiApplication::desktopFileName();
}

std::unique_ptr<ForeignToplevels> ForeignToplevels::open(WaylandConnection& connection) {
  auto manager = connection.bindFirst<zwlr_foreign_toplevel_manager_v1>(
      zwlr_foreign_toplevel_manager_v1_interface, kManagerVersion);
  if (!manager) return nullptr;
  return std::unique_ptr<ForeignToplevels>(new ForeignToplevels(connection, std::move(manager)));
}

ForeignToplevels::ForeignToplevels(WaylandConnection& connection, Manager manager)
    : connection_(connection),
      manager_(std::move(manager)),
      seat_(connection.bindFirst<wl_seat>(wl_seat_interface, kSeatVersion)),
      patience_(kPatience, [this] { finish(); }) {
  QObject::connect(&connection, &WaylandConnection::lost, &context_, [this] { finish(); });
  listen();
  connection.roundTrip();
  isListed_ = true;
}

void ForeignToplevels::listen() {
  static constexpr zwlr_foreign_toplevel_manager_v1_listener kListener{
      [](void* self, zwlr_foreign_toplevel_manager_v1*, zwlr_foreign_toplevel_handle_v1* handle) {
        static_cast<ForeignToplevels*>(self)->came(handle);
      },
      [](void*, zwlr_foreign_toplevel_manager_v1*) {}};
  zwlr_foreign_toplevel_manager_v1_add_listener(manager_.get(), &kListener, this);
}

void ForeignToplevels::came(zwlr_foreign_toplevel_handle_v1* handle) {
  auto toplevel = std::make_unique<ForeignToplevel>(
      WaylandProxy<zwlr_foreign_toplevel_handle_v1>(handle),
      ForeignToplevel::Client{[this](ForeignToplevel& one, const ForeignToplevel::State& before) {
                                changed(one, before);
                              },
                              [this](ForeignToplevel& one) { closed(one); }});
  // Those that were there before us are listed with the newest first.
  recent_.insert(isListed_ ? recent_.begin() : recent_.end(), std::move(toplevel));
}

void ForeignToplevels::changed(ForeignToplevel& toplevel, const ForeignToplevel::State& before) {
  if (!turning_.empty()) {
    if (toplevel.state().minimised == toMinimised_) turned(toplevel);
    return;
  }
  if (!toplevel.state().minimised) toplevel.isHidden = false;
  if (!toplevel.state().active || before.active) return;
  const auto place = std::ranges::find(recent_, &toplevel, &std::unique_ptr<ForeignToplevel>::get);
  std::rotate(recent_.begin(), place, place + 1);
}

void ForeignToplevels::closed(ForeignToplevel& toplevel) {
  if (activeBefore_ == &toplevel) activeBefore_ = nullptr;
  if (!turning_.empty()) turned(toplevel);
  std::erase_if(recent_, [&](const auto& one) { return one.get() == &toplevel; });
}

bool ForeignToplevels::isHiding() {
  return std::ranges::any_of(recent_, [](const auto& toplevel) { return toplevel->isHidden; });
}

ForeignToplevels::Toplevels ForeignToplevels::thoseWhere(
    bool (*test)(const ForeignToplevel& toplevel)) const {
  Toplevels found;
  for (const auto& toplevel : recent_) {
    if (!toplevel->isDialog() && test(*toplevel)) found.push_back(toplevel.get());
  }
  return found;
}

// One that has just been opened is on the screen before we have heard of it.
void ForeignToplevels::hide(Done done) {
  done_ = std::move(done);
  if (connection_.isLost()) return finish();
  caughtUp_ = std::make_unique<CaughtUp>(connection_, [this] { hideListed(); });
}

void ForeignToplevels::hideListed() {
  const Toplevels going = thoseWhere(
      [](const ForeignToplevel& one) { return !one.isOurs() && !one.state().minimised; });
  if (!going.empty()) activeBefore_ = going.front();
  for (ForeignToplevel* toplevel : going) {
    toplevel->isHidden = true;
    zwlr_foreign_toplevel_handle_v1_set_minimized(toplevel->get());
  }
  begin(going, true, std::move(done_));
}

// Each that comes back is raised and made active, so that the last one stays so.
void ForeignToplevels::show(Done done) {
  const Toplevels hidden = thoseWhere([](const ForeignToplevel& one) { return one.isHidden; });
  const Toplevels onTop =
      thoseWhere([](const ForeignToplevel& one) { return !one.state().minimised; });
  std::for_each(hidden.rbegin(), hidden.rend(), [](ForeignToplevel* toplevel) {
    toplevel->isHidden = false;
    zwlr_foreign_toplevel_handle_v1_unset_minimized(toplevel->get());
  });
  Toplevels active = onTop;
  if (onTop.empty() && activeBefore_ != nullptr) active.push_back(activeBefore_);
  std::for_each(active.rbegin(), active.rend(), [this](ForeignToplevel* toplevel) {
    if (seat_) zwlr_foreign_toplevel_handle_v1_activate(toplevel->get(), seat_.get());
  });
  begin(hidden, false, std::move(done));
}

bool ForeignToplevels::bringForward(const QString& title) {
  // Qt adds the program's name to the title.
  const auto ours = std::ranges::find_if(
      recent_, [&](const auto& one) { return one->isOurs() && one->title().startsWith(title); });
  if (!seat_ || ours == recent_.end()) return false;
  zwlr_foreign_toplevel_handle_v1_unset_minimized((*ours)->get());
  zwlr_foreign_toplevel_handle_v1_activate((*ours)->get(), seat_.get());
  return true;
}

void ForeignToplevels::begin(Toplevels turned, bool toMinimised, Done done) {
  turning_ = std::move(turned);
  toMinimised_ = toMinimised;
  done_ = std::move(done);
  if (turning_.empty() || connection_.isLost()) return finish();
  // One that stands still does as it was told when it goes on.
  caughtUp_ = std::make_unique<CaughtUp>(connection_, [this] { patience_.start(); });
}

void ForeignToplevels::turned(ForeignToplevel& toplevel) {
  std::erase(turning_, &toplevel);
  if (turning_.empty()) finish();
}

void ForeignToplevels::finish() {
  patience_.stop();
  caughtUp_.reset();
  // Sway takes such a request and does nothing.
  if (!turning_.empty() && !connection_.isLost())
    qCWarning(lcWayland, "%s", cannotBeMinimised(turning_.size()).c_str());
  for (ForeignToplevel* toplevel : std::exchange(turning_, {})) toplevel->isHidden = false;
  if (done_) {
    QMetaObject::invokeMethod(&context_, std::exchange(done_, {}), Qt::QueuedConnection);
  }
}

}  // namespace linux_desktop
