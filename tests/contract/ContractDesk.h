#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/Desktop.h"
#include "platform/Runtime.h"

namespace contract {

/// A desktop under test, and the hands and eyes that a case needs to judge it. They are those of
/// somebody outside the program: what the port itself tells is no evidence.
class ContractDesk {
 public:
  virtual ~ContractDesk() = default;

  /// Why the case of that name cannot be judged here: the fact cannot be seen, or nobody is given
  /// the service. Empty: it can.
  [[nodiscard]] virtual std::string whyNot(const std::string& /*name*/) { return {}; }

  [[nodiscard]] virtual const platform::Desktop& desktop() = 0;

  /// Lets the desktop handle events until `fact` holds. False when it does not come to hold within
  /// five seconds of the desktop's own time.
  [[nodiscard]] virtual bool runUntil(const std::function<bool()>& fact) = 0;
  /// Ends this run of the program and begins the next: `desktop()` is another one afterwards, with
  /// the same settings.
  virtual void nextRunOfTheProgram() = 0;

  /// There is one output device, the default one and not muted; or there is none.
  virtual void setOutputDevice(bool present) = 0;
  [[nodiscard]] virtual bool isMuted() = 0;
  /// Another program mutes or unmutes it.
  virtual void muteFromOutside(bool muted) = 0;

  /// How many of the program's windows, alerts included, are on the screen.
  [[nodiscard]] virtual std::size_t visibleWindows() = 0;
  /// The user's main button goes down and up again on `view` of a shown window.
  virtual void click(platform::NSView& view) = 0;
  [[nodiscard]] virtual bool isItemThere() = 0;
  virtual void clickItem(platform::NSEventType type) = 0;
  virtual void answerAlert(std::size_t button) = 0;

  /// The user presses the key of a letter while exactly these modifiers are held, or lets go of all
  /// of them again; a virtual key code and a mask.
  virtual void pressLetter(std::uint32_t keyCode, std::uint32_t modifiers) = 0;
  virtual void releaseLetter(std::uint32_t keyCode, std::uint32_t modifiers) = 0;

  /// A monitor of each of these sizes in pixels, side by side with their upper edges in line; the
  /// first is the primary one.
  virtual void setMonitors(const std::vector<platform::NSSize>& sizes) = 0;
  /// The user goes to that space; the first is 0, and there are two at least.
  virtual void goToSpace(std::uint32_t space) = 0;
  /// The user has the desktop lay out the screen's picture in another way.
  virtual void changeLayout(const platform::port::ScreenId& screen) = 0;
  /// How it is laid out, in the desktop's own words.
  [[nodiscard]] virtual std::string layout(const platform::port::ScreenId& screen) = 0;
  /// The path of a picture file, a new one each time.
  [[nodiscard]] virtual std::string makePicture() = 0;
  /// Another program has itself started at login after all others: the one at `path`, or, where
  /// that is none, one of which nobody can tell. The list is empty when the desk is made.
  virtual void addLoginItem(const std::optional<std::string>& path) = 0;
  [[nodiscard]] virtual bool startsAtLogin(const std::string& path) = 0;
  /// False: to the desktop all other programs are one, which always runs.
  [[nodiscard]] virtual bool tellsApplicationsApart() { return true; }
  /// Another program starts with an ordinary window, which has come when this returns.
  virtual void openApplication(const std::string& title) = 0;
  /// Whether the window of the program that was opened last is on the screen.
  [[nodiscard]] virtual bool isApplicationSeen() = 0;
};

/// A desktop that the suite runs against.
struct DeskKind {
  std::string name;
  std::function<std::unique_ptr<ContractDesk>()> make;

  friend std::ostream& operator<<(std::ostream& stream, const DeskKind& kind) {
    return stream << kind.name;
  }
};

/// What every desktop promises, service by service. A case sees one desktop through its port and
/// judges it from outside through its desk. Skipped is what a desk gives a reason for.
class DesktopContract : public ::testing::TestWithParam<DeskKind> {
 protected:
  void SetUp() override {
    const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::string reason = desk_->whyNot(name.substr(0, name.find('/')));
    if (!reason.empty()) GTEST_SKIP() << reason;
  }

  [[nodiscard]] ContractDesk& desk() { return *desk_; }
  [[nodiscard]] platform::port::MainLoop& loop() { return desk_->desktop().mainLoop; }
  [[nodiscard]] platform::port::DefaultsStore& defaults() { return desk_->desktop().defaults; }
  /// `what`, noted when it runs.
  [[nodiscard]] std::function<void()> note(std::string what) {
    return [this, what = std::move(what)] { order.push_back(what); };
  }

  std::vector<std::string> order;

 private:
  std::unique_ptr<ContractDesk> desk_ = GetParam().make();
};

}  // namespace contract
