#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wayland/WaylandConnection.h"
#include "desktop/linux/windowsystem/OtherApplications.h"

namespace linux_desktop {

/// A window of some program, as a compositor tells others of it.
class ForeignToplevel {
 public:
  struct State {
    bool minimised = false;
    bool active = false;
  };

  struct Client {
    std::function<void(ForeignToplevel& toplevel, const State& before)> changed;
    /// Must let go of it.
    std::function<void(ForeignToplevel& toplevel)> closed;
  };

  ForeignToplevel(WaylandProxy<zwlr_foreign_toplevel_handle_v1> handle, Client client);
  ForeignToplevel(const ForeignToplevel&) = delete;
  ForeignToplevel& operator=(const ForeignToplevel&) = delete;

  [[nodiscard]] zwlr_foreign_toplevel_handle_v1* get() const { return handle_.get(); }
  [[nodiscard]] const State& state() const { return state_; }
  /// A dialog goes where its window goes.
  [[nodiscard]] bool isDialog() const { return hasParent_; }
  [[nodiscard]] bool isOurs() const;
  [[nodiscard]] const QString& title() const { return title_; }

  /// Hidden by us, and not brought forward since.
  bool isHidden = false;

 private:
  void listen();
  void setStates(const wl_array& states);
  void described();

  WaylandProxy<zwlr_foreign_toplevel_handle_v1> handle_;
  Client client_;
  QString title_;
  QString application_;
  bool hasParent_ = false;
  State state_;
  State told_;
};

/// Hides by minimising, on compositors that let any program do so. They tell no stacking order and
/// keep no mark: the order is the one in which the windows were active since we look, and what an
/// earlier process hid counts as minimised by the user.
class ForeignToplevels final : public WindowHider {
 public:
  /// Null where the compositor does not let us. `connection` outlives it.
  [[nodiscard]] static std::unique_ptr<ForeignToplevels> open(WaylandConnection& connection);

  [[nodiscard]] bool isHiding() override;
  void hide(Done done) override;
  void show(Done done) override;

  /// Brings a window of ours to the front and to where the user is. False: none with that title is
  /// listed.
  bool bringForward(const QString& title);

 private:
  using Manager = WaylandProxy<zwlr_foreign_toplevel_manager_v1>;
  using Toplevels = std::vector<ForeignToplevel*>;

  ForeignToplevels(WaylandConnection& connection, Manager manager);
  void listen();
  void came(zwlr_foreign_toplevel_handle_v1* handle);
  void changed(ForeignToplevel& toplevel, const ForeignToplevel::State& before);
  void closed(ForeignToplevel& toplevel);
  [[nodiscard]] Toplevels thoseWhere(bool (*test)(const ForeignToplevel& toplevel)) const;
  void hideListed();
  void begin(Toplevels turned, bool toMinimised, Done done);
  void turned(ForeignToplevel& toplevel);
  void finish();

  WaylandConnection& connection_;
  Manager manager_;
  WaylandProxy<wl_seat> seat_;
  /// The one that was active last comes first.
  std::vector<std::unique_ptr<ForeignToplevel>> recent_;
  bool isListed_ = false;
  /// The one to be active again; null: none that is still there.
  ForeignToplevel* activeBefore_ = nullptr;

  /// What is under way: those that have not turned yet, and to what. The compositor makes others
  /// active meanwhile, which says nothing of what the user does.
  Toplevels turning_;
  bool toMinimised_ = false;
  Done done_;
  std::unique_ptr<CaughtUp> caughtUp_;
  OneShot patience_;
  QObject context_;
};

}  // namespace linux_desktop
