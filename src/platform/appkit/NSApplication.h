#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/appkit/NSEvent.h"
#include "platform/foundation/NSObject.h"
#include "platform/port/Program.h"
#include "platform/port/Screens.h"

namespace platform {

/// The stages of an application's life, as its delegate is told of them.
class NSApplicationDelegate {
 public:
  virtual ~NSApplicationDelegate() = default;
  virtual void applicationWillFinishLaunching() = 0;
  virtual void applicationDidFinishLaunching() = 0;
  virtual void applicationWillTerminate() = 0;
  /// The user started the program again while it runs.
  virtual void applicationShouldHandleReopen() = 0;
  /// What the action of that name does; empty: there is none (see port::SessionClient).
  [[nodiscard]] virtual std::function<void()> applicationAction(std::string_view /*name*/) {
    return {};
  }
};

/// The application: its delegate, its events and the end of the responder chain. Main thread only.
class NSApplication final : public NSObject,
                            private port::SessionClient,
                            private port::ScreensClient {
 public:
  NSApplication();
  ~NSApplication() override;

  [[nodiscard]] static NSApplication& sharedApplication();

  /// Held strongly: the delegate is an object of the main interface description. It must implement
  /// NSApplicationDelegate.
  void setDelegate(std::shared_ptr<NSObject> delegate);
  [[nodiscard]] const std::shared_ptr<NSObject>& delegate() const { return delegate_; }

  /// Tells the delegate of the launch, then handles events until `terminate`.
  void run();
  /// Tells the delegate, then ends `run`. `sender` is not used.
  void terminate(NSObject* sender);

  /// Hands `event` to the application: it is the current event until `handler` returns. Events that
  /// arrive while the main thread sleeps are handled afterwards, in their order.
  void sendEvent(const NSEvent& event, const std::function<void()>& handler);
  [[nodiscard]] const std::optional<NSEvent>& currentEvent() const { return currentEvent_; }

  /// Sends `action` to `target` or, where that is null, to whoever answers on the responder chain,
  /// of which the delegate and then the application itself are the end.
  void sendAction(std::string_view action, NSObject* target, NSObject* sender);

  /// Lets other programs see that the application's mode is on or off.
  void showMode(bool isOn);

  /// Brings the application to the foreground. The desktop may refuse.
  void activateIgnoringOtherApps(bool ignoreOtherApps);

  [[nodiscard]] const ClassDescription& classDescription() const override;

 private:
  void applicationShouldReopen() override;
  bool applicationShouldPerform(std::string_view action) override;
  void screenParametersDidChange() override;
  [[nodiscard]] NSApplicationDelegate& applicationDelegate();

  std::shared_ptr<NSObject> delegate_;
  std::optional<NSEvent> currentEvent_;
};

/// Runs the application whose main interface description is the storyboard "Main": makes the
/// delegate that it names and runs until the application ends.
void NSApplicationMain();

}  // namespace platform
