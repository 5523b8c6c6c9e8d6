#include "desktop/simulated/SimulatedWindows.h"

#include <algorithm>
#include <sstream>

#include "desktop/simulated/SimulatedScreens.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSStatusItem.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/Process.h"

namespace simulated {

class SimulatedStatusBar::Peer final : public platform::port::StatusItemPeer {
 public:
  explicit Peer(SimulatedStatusBar& bar) : bar_(bar) {}
  ~Peer() override { bar_.client_ = nullptr; }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void setImage(const platform::NSImage* image) override {
    bar_.image_ = image == nullptr ? "" : image->name();
    bar_.log_.add("statusItem.setImage " + bar_.image_);
  }

  void setToolTip(const std::string& text) override { bar_.toolTip_ = text; }

  void openMenu(const platform::NSMenu& menu) override {
    bar_.log_.add("statusItem.openMenu");
    bar_.menu_.emplace();
    for (const auto& item : menu.itemArray()) bar_.menu_->push_back(item->title());
  }

 private:
  SimulatedStatusBar& bar_;
};

std::unique_ptr<platform::port::StatusItemPeer> SimulatedStatusBar::createStatusItem(
    platform::port::StatusItemClient& client) {
  if (client_ != nullptr) platform::programmingError("the simulated status bar has one item");
  client_ = &client;
  return std::make_unique<Peer>(*this);
}

void SimulatedStatusBar::choose(std::string_view title) {
  if (!menu_) platform::programmingError("no menu is open");
  const auto line = std::ranges::find(*menu_, title);
  if (line == menu_->end()) platform::programmingError("the menu has no such line");
  client_->menuItemChosen(static_cast<std::size_t>(line - menu_->begin()));
  closeMenu();
}

void SimulatedStatusBar::closeMenu() {
  menu_.reset();
  // The item may have gone with what was chosen.
  if (client_ != nullptr) client_->menuDidClose();
}

using platform::NSEventType;
using platform::NSWindow;

namespace {

/// "0 0 1280 720 showing sea"
std::string look(const NSWindow& window) {
  const platform::NSRect& frame = window.frame();
  std::ostringstream text;
  text << frame.x << ' ' << frame.y << ' ' << frame.width << ' ' << frame.height;
  if (!window.contentView()) return text.str() + " empty";
  const auto* view = dynamic_cast<const platform::NSImageView*>(window.contentView().get());
  if (view == nullptr || !view->image()) return text.str();
  const auto* capture = dynamic_cast<const SimulatedCapture*>(view->image()->capture().get());
  return text.str() + " showing " + (capture == nullptr ? "nothing" : capture->content());
}

}  // namespace

class SimulatedWindows::Window final : public platform::port::WindowPeer {
 public:
  Window(SimulatedWindows& windows, NSWindow& model, platform::port::WindowClient& windowClient)
      : client(windowClient), window(model), windows_(windows) {
    windows_.windows_.push_back(this);
  }
  ~Window() override {
    std::erase(windows_.windows_, this);
    if (windows_.keyWindow_ == this) windows_.keyWindow_ = nullptr;
  }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  void show(const platform::port::Placement& placement) override {
    const auto* atFrame = std::get_if<platform::port::PlacedAtFrame>(&placement);
    std::string call = "window.show";
    if (atFrame != nullptr) {
      call += (atFrame->behind ? " behind at level " : " in front at level ") +
              std::to_string(window.level()) + ", " + look(window);
    }
    windows_.log_.add(std::move(call));
    isAtFrame_ = atFrame != nullptr;
    isShown_ = true;
    hasContent_ = window.contentView() != nullptr;
  }
  void hide() override {
    windows_.log_.add("window.hide");
    isShown_ = false;
  }
  void makeKey() override {
    windows_.log_.add("window.makeKey");
    windows_.keyWindow_ = this;
    // Reports never come from inside a call of the peer.
    windows_.loop_.post([&windows = windows_, this] {
      if (std::ranges::find(windows.windows_, this) != windows.windows_.end()) {
        client.windowDidBecomeKey();
      }
    });
  }
  void update(const std::vector<platform::port::ChangedView>&, bool) override {
    ++windows_.updates_;
    hasContent_ = window.contentView() != nullptr;
    if (isAtFrame_) windows_.log_.add("window.update " + look(window));
  }
  [[nodiscard]] bool isAtFrame() const { return isShown_ && isAtFrame_; }
  [[nodiscard]] bool isVisible() const {
    return isShown_ && (hasContent_ || window.style() != platform::NSWindowStyle::Borderless);
  }

  platform::port::WindowClient& client;
  NSWindow& window;

 private:
  SimulatedWindows& windows_;
  bool isShown_ = false;
  bool isAtFrame_ = false;
  bool hasContent_ = false;
};

/// What the user must answer; `takeAway` takes it off the screen.
class SimulatedWindows::Modal final : public ModalPeer {
 public:
  explicit Modal(std::function<void()> takeAway) : takeAway_(std::move(takeAway)) {}
  ~Modal() override { takeAway_(); }
  Modal(const Modal&) = delete;
  Modal& operator=(const Modal&) = delete;

 private:
  std::function<void()> takeAway_;
};

std::unique_ptr<platform::port::WindowPeer> SimulatedWindows::createWindow(
    NSWindow& window, platform::port::WindowClient& client) {
  return std::make_unique<Window>(*this, window, client);
}

std::unique_ptr<platform::port::Windows::ModalPeer> SimulatedWindows::showAlert(
    const platform::NSAlert& alert, std::function<void(std::size_t)> answered) {
  log_.add("windows.showAlert " + alert.messageText());
  return addAlert(alert, false, std::move(answered));
}

std::unique_ptr<platform::port::Windows::ModalPeer> SimulatedWindows::showSheet(
    const platform::NSAlert& alert, platform::port::WindowPeer&,
    std::function<void(std::size_t)> answered) {
  log_.add("windows.showSheet " + alert.messageText());
  return addAlert(alert, true, std::move(answered));
}

std::unique_ptr<platform::port::Windows::ModalPeer> SimulatedWindows::addAlert(
    const platform::NSAlert& alert, bool isSheet, std::function<void(std::size_t)> answered) {
  alerts_.push_back({alert.messageText(), static_cast<int>(alert.alertStyle()),
                     alert.buttonTitles(), isSheet, alert.informativeText()});
  answered_.push_back(std::move(answered));
  return std::make_unique<Modal>([this] {
    alerts_.pop_back();
    answered_.pop_back();
  });
}

std::unique_ptr<platform::port::Windows::ModalPeer> SimulatedWindows::showOpenPanel(
    const platform::NSOpenPanel& panel, std::function<void(std::optional<std::string>)> answered) {
  log_.add("windows.showOpenPanel " + panel.message());
  panel_ = ShownPanel{panel.message(), panel.prompt(), panel.allowedFileTypes(),
                      panel.canChooseFiles(), panel.canChooseDirectories()};
  chosen_ = std::move(answered);
  return std::make_unique<Modal>([this] {
    panel_.reset();
    chosen_ = nullptr;
  });
}

void SimulatedWindows::pressKey(const platform::NSEvent& event) {
  if (keyWindow_ == nullptr || !keyWindow_->isVisible()) {
    platform::programmingError("no window has the keyboard");
  }
  keyWindow_->client.keyDown(event);
}

SimulatedWindows::Window& SimulatedWindows::windowOf(platform::NSView& view) {
  for (Window* window : windows_) {
    if (view.window() == &window->window && window->isVisible()) return *window;
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
    if (window->isVisible()) window->client.userActedElsewhere();
  }
}

void SimulatedWindows::escape() {
  for (Window* window : std::vector(windows_)) {
    if (window->isVisible()) window->client.windowShouldClose();
  }
}

std::vector<NSWindow*> SimulatedWindows::windowsThat(bool (Window::*are)() const) const {
  std::vector<NSWindow*> found;
  for (const Window* window : windows_) {
    if ((window->*are)()) found.push_back(&window->window);
  }
  return found;
}

std::vector<NSWindow*> SimulatedWindows::covers() const {
  return windowsThat(&Window::isAtFrame);
}

std::vector<NSWindow*> SimulatedWindows::visibleWindows() const {
  return windowsThat(&Window::isVisible);
}

}  // namespace simulated
