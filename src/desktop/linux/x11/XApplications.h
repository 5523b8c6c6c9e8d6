#pragma once

#include <QObject>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/linux/x11/ClientWindows.h"
#include "desktop/linux/x11/HiddenStateWait.h"
#include "desktop/linux/x11/HideAndShow.h"
#include "platform/port/RunningApplications.h"

namespace linux_desktop {

/// An application as its windows tell of it. Points into the list that it was made of.
struct ApplicationGroup {
  struct Follower {
    const ClientWindow* window;
    const ClientWindow* leader;
  };

  /// The same for the same application in every list while it runs.
  std::string key;
  /// Given by who keeps them apart from those that ran before.
  platform::port::ApplicationId id = 0;
  /// What its first window calls it; empty where that says nothing.
  std::string name;
  /// In the window manager's order: those of its own right, and the dialogs that go with them.
  std::vector<const ClientWindow*> windows = {};
  std::vector<Follower> followers = {};

  /// Some window was hidden and is so still.
  [[nodiscard]] bool isHidden() const;
  /// Some window could be hidden.
  [[nodiscard]] bool isVisible() const;
};

/// A window of this program.
[[nodiscard]] bool isOurs(const ClientWindow& window);

/// The applications but for ourselves, in the order of their oldest windows.
[[nodiscard]] std::vector<ApplicationGroup> applicationsOf(const ClientList& list);

/// The running applications of an X11 desktop: those that have windows, under the names that these
/// have for them, and ourselves.
///
/// Hidden windows are minimised and carry a mark, `_CALMDECK_HIDDEN`; the root window keeps the
/// stacking order from before, `_CALMDECK_ORDER`, and the one of them that the user worked in last,
/// `_CALMDECK_ACTIVE`. All of it outlives this process, so that the next one can show what this one
/// hid.
class XApplications final : public platform::port::RunningApplications {
 public:
  using Id = platform::port::ApplicationId;

  /// `events` outlives this.
  explicit XApplications(XEvents& events);

  /// Whether a window manager runs that minimises.
  [[nodiscard]] bool canHide() override;
  [[nodiscard]] std::vector<platform::port::ApplicationInfo> runningApplications() override;
  [[nodiscard]] bool isHidden(Id application) override;
  bool hide(Id application) override;
  bool unhide(Id application) override;

 private:
  enum class Wish { Hide, Show };
  using Wishes = std::map<Id, Wish>;
  /// One reading of the window manager's list; what hangs on it points into it.
  struct Moment {
    ClientList list;
    std::vector<ApplicationGroup> applications;

    /// Null: there is none any more.
    [[nodiscard]] const ApplicationGroup* find(Id application) const;
  };

  /// Read in this turn of the loop.
  const Moment& now();
  /// Read at some time.
  const Moment& latest() { return moment_ ? *moment_ : now(); }
  Moment read();
  [[nodiscard]] std::optional<Wish> wishFor(Id application) const;
  bool wish(Id application, Wish wish);
  void queueEndOfTurn();
  void carryOut();
  /// Takes the wishes of that kind out of the waiting ones.
  std::vector<const ApplicationGroup*> take(Wish wish, const Moment& moment);
  [[nodiscard]] bool startHiding();
  [[nodiscard]] bool startShowing();
  void finished();
  void warnOnce(const char* line);

  ClientWindows clients_;
  HiddenWatch watch_;
  std::map<std::string, Id> ids_;
  Id lastId_;
  std::optional<Moment> moment_;
  bool isFresh_ = false;
  bool turnEnds_ = false;
  bool warned_ = false;
  /// What was asked for and not begun, and what is under way: one operation at a time, so that the
  /// last wish is also the last request.
  Wishes wishes_;
  Wishes underWay_;
  HiddenStateWait wait_;
  std::unique_ptr<HiddenOperation> operation_;
  QObject context_;
};

}  // namespace linux_desktop
