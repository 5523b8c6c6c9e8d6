#pragma once

#include <QObject>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "platform/port/RunningApplications.h"

namespace linux_desktop {

/// Hides the windows of all other programs at once. Main thread only.
class WindowHider {
 public:
  using Done = std::function<void()>;

  virtual ~WindowHider() = default;
  /// Whether who would do it now can hide any.
  [[nodiscard]] virtual bool canHide() { return true; }
  /// Whether something is away that this process or an earlier one hid. From memory.
  [[nodiscard]] virtual bool isHiding() = 0;
  /// As port::RunningApplications has it for each application. Returns at once; `done` is called
  /// when it has happened or cannot, never from inside the call. The next request comes after that.
  virtual void hide(Done done) = 0;
  virtual void show(Done done) = 0;
};

/// What is said where so many windows stay on the screen.
[[nodiscard]] std::string cannotBeMinimised(std::size_t windows);

/// The running applications of a desktop that gives nobody its list of windows, or that hides them
/// only together: ourselves, and one application that is all the others.
class OtherApplications final : public platform::port::RunningApplications {
 public:
  using Id = platform::port::ApplicationId;

  /// `hider` outlives this.
  explicit OtherApplications(WindowHider& hider) : hider_(hider) {}

  [[nodiscard]] bool canHide() override { return hider_.canHide(); }
  [[nodiscard]] std::vector<platform::port::ApplicationInfo> runningApplications() override;
  [[nodiscard]] bool isHidden(Id application) override;
  bool hide(Id application) override;
  bool unhide(Id application) override;

 private:
  enum class Wish { Hide, Show };

  bool wish(Id application, Wish wish);
  void queueNext();
  void carryOut();
  void finished();

  WindowHider& hider_;
  /// What was asked for and not begun, and what is under way: one at a time, so that the last wish
  /// is also the last request.
  std::optional<Wish> wish_;
  std::optional<Wish> underWay_;
  QObject context_;
};

}  // namespace linux_desktop
