#include "desktop/simulated/SimulatedWindows.h"

#include <algorithm>

#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/ProgrammingError.h"

namespace simulated {

using platform::NSEventType;

class SimulatedWindows::Window final : public platform::port::WindowPeer {
 public:
  Window(SimulatedWindows& windows, platform::NSWindow& model,
         platform::port::WindowClient& windowClient)
      : client(windowClient), window(model), windows_(windows) {
    windows_.windows_.push_back(this);
  }
  ~Window() override { std::erase(windows_.windows_, this); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  void show(const platform::port::Placement&) override {
    windows_.log_.add("window.show");
    visible = true;
  }
  void hide() override {
    windows_.log_.add("window.hide");
    visible = false;
  }
  void makeKey() override {
    windows_.log_.add("window.makeKey");
    // Reports never come from inside a call of the peer.
    windows_.loop_.post([&windows = windows_, this] {
      if (std::ranges::find(windows.windows_, this) != windows.windows_.end()) {
        client.windowDidBecomeKey();
      }
    });
  }
  void update(const std::vector<platform::port::ChangedView>&, bool) override {
    ++windows_.updates_;
  }

  platform::port::WindowClient& client;
  platform::NSWindow& window;
  bool visible = false;

 private:
  SimulatedWindows& windows_;
};

class SimulatedWindows::Alert final : public AlertPeer {
 public:
  explicit Alert(SimulatedWindows& windows) : windows_(windows) {}
  ~Alert() override {
    windows_.alerts_.pop_back();
    windows_.answered_.pop_back();
  }
  Alert(const Alert&) = delete;
  Alert& operator=(const Alert&) = delete;

 private:
  SimulatedWindows& windows_;
};

std::unique_ptr<platform::port::WindowPeer> SimulatedWindows::createWindow(
    platform::NSWindow& window, platform::port::WindowClient& client) {
  return std::make_unique<Window>(*this, window, client);
}

std::unique_ptr<platform::port::Windows::AlertPeer> SimulatedWindows::showAlert(
    const platform::NSAlert& alert, std::function<void(std::size_t)> answered) {
  log_.add("windows.showAlert " + alert.messageText());
  alerts_.push_back(
      {alert.messageText(), static_cast<int>(alert.alertStyle()), alert.buttonTitles()});
  answered_.push_back(std::move(answered));
  return std::make_unique<Alert>(*this);
}

SimulatedWindows::Window& SimulatedWindows::windowOf(platform::NSView& view) {
  for (Window* window : windows_) {
    if (view.window() == &window->window && window->visible) return *window;
  }
  platform::programmingError("the user can press only what is shown");
}

void SimulatedWindows::press(platform::NSView& view) {
  windowOf(view).client.mouseDown(view, {NSEventType::LeftMouseDown, {}});
}

void SimulatedWindows::release(platform::NSView& view) {
  windowOf(view).client.mouseUp(view, {NSEventType::LeftMouseUp, {}});
}

void SimulatedWindows::actElsewhere() {
  for (Window* window : std::vector(windows_)) {
    if (window->visible) window->client.userActedElsewhere();
  }
}

void SimulatedWindows::escape() {
  for (Window* window : std::vector(windows_)) {
    if (window->visible) window->client.windowShouldClose();
  }
}

std::size_t SimulatedWindows::visibleWindowCount() const {
  return static_cast<std::size_t>(
      std::ranges::count_if(windows_, [](const Window* window) { return window->visible; }));
}

std::vector<platform::NSWindow*> SimulatedWindows::visibleWindows() const {
  std::vector<platform::NSWindow*> visible;
  for (const Window* window : windows_) {
    if (window->visible) visible.push_back(&window->window);
  }
  return visible;
}

}  // namespace simulated
