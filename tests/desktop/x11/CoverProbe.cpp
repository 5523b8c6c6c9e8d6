// A program with nothing but covers: one a screen, refreshed as spaces and screens change. Says in
// a line when they are up, when it hears of another space and when it has refreshed them for other
// screens. With "--told" it knows of a backdrop, plain red, which
// SIGUSR1 turns blue, and the next one makes unknown. SIGUSR2 takes the covers down, or puts them
// up again.

#include <sys/signalfd.h>

#include <QApplication>
#include <QScopeGuard>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string>

#include "desktop/linux/files/FileDescriptor.h"
#include "desktop/linux/loop/QtMainLoop.h"
#include "desktop/linux/wallpaper/WallpaperPictures.h"
#include "desktop/linux/x11/X11WindowSystem.h"
#include "platform/Desktop.h"
#include "platform/Runtime.h"
#include "platform/appkit/NSImageView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/ProgrammingError.h"

namespace {

using linux_desktop::Backdrop;
using linux_desktop::Monitor;
using linux_desktop::X11WindowSystem;

void say(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

[[noreturn]] void absent() {
  platform::programmingError("a service that covers do not need");
}

class CoversOnly final : public platform::port::Windows {
 public:
  explicit CoversOnly(X11WindowSystem& x) : x_(x) {}

  std::unique_ptr<platform::port::WindowPeer> createWindow(
      platform::NSWindow& window, platform::port::WindowClient& client) override {
    return x_.covers()->createCover(window, client);
  }
  std::unique_ptr<ModalPeer> showAlert(const platform::NSAlert&,
                                       std::function<void(std::size_t)>) override {
    absent();
  }
  std::unique_ptr<ModalPeer> showSheet(const platform::NSAlert&, platform::port::WindowPeer&,
                                       std::function<void(std::size_t)>) override {
    absent();
  }
  std::unique_ptr<ModalPeer> showOpenPanel(
      const platform::NSOpenPanel&, std::function<void(std::optional<std::string>)>) override {
    absent();
  }
  void activateApplication() override {}

 private:
  X11WindowSystem& x_;
};

struct SilentSession final : platform::port::Session {
  void setClient(platform::port::SessionClient*) override {}
};

class Desk final : public platform::Desktop {
 public:
  explicit Desk(X11WindowSystem& x) : x_(x), windows_(x) {}

  platform::port::MainLoop& mainLoop() override { return loop_; }
  platform::port::StandardOutput& standardOutput() override { absent(); }
  platform::port::DefaultsStore& defaults() override { absent(); }
  platform::port::Session& session() override { return session_; }
  platform::port::Windows& windows() override { return windows_; }
  platform::port::StatusBar& statusBar() override { absent(); }
  platform::port::Screens& screens() override { return *x_.screens(); }
  [[nodiscard]] platform::port::SystemVersion systemVersion() const override { return {}; }
  [[nodiscard]] std::string bundlePath() const override { return {}; }
  platform::port::WindowList* windowList() override { return x_.windowList(); }

 private:
  X11WindowSystem& x_;
  linux_desktop::QtMainLoop loop_;
  CoversOnly windows_;
  SilentSession session_;
};

/// A desktop that was told one plain colour for all monitors.
class PlainBackdrop final : public linux_desktop::BackdropSource {
 public:
  std::optional<Backdrop> backdrop(const Monitor&) override { return backdrop_; }
  std::optional<QImage> render(const Backdrop& backdrop, const Monitor& monitor) override {
    QImage image(monitor.pixels().size(), QImage::Format_RGB32);
    image.fill(backdrop.primary);
    return image;
  }
  void setChanged(std::function<void()> changed) override { changed_ = std::move(changed); }

  void turn() {
    if (backdrop_ && backdrop_->primary == Qt::red) {
      backdrop_->primary = Qt::blue;
    } else {
      backdrop_.reset();
    }
    if (changed_) changed_();
  }

 private:
  std::optional<Backdrop> backdrop_{Backdrop{.file = {}, .primary = Qt::red}};
  std::function<void()> changed_;
};

class Probe final : private platform::port::SpacesClient, private platform::port::ScreensClient {
 public:
  explicit Probe(X11WindowSystem& x) : x_(x) {
    afterScreenChange_.setSingleShot(true);
    afterScreenChange_.setInterval(std::chrono::seconds(1));
    QObject::connect(&afterScreenChange_, &QTimer::timeout, &afterScreenChange_, [this] {
      refresh();
      say("refreshed");
    });
    x_.spaces()->setClient(this);
    x_.screens()->setClient(this);
    putUp();
  }
  ~Probe() override {
    x_.spaces()->setClient(nullptr);
    x_.screens()->setClient(nullptr);
  }
  Probe(const Probe&) = delete;
  Probe& operator=(const Probe&) = delete;

  void toggle() {
    if (covers_.empty()) {
      putUp();
      return;
    }
    for (const auto& cover : covers_) cover->orderOut(nullptr);
    covers_.clear();
  }

 private:
  void activeSpaceDidChange() override {
    say("space");
    refresh();
  }
  void screenParametersDidChange() override {
    makeCovers();
    afterScreenChange_.start();
  }

  void putUp() {
    makeCovers();
    refresh();
    say("up");
  }
  void makeCovers() {
    const auto screens = platform::NSScreen::screens();
    while (covers_.size() < screens.size()) {
      const platform::NSScreen& screen = *screens[covers_.size()];
      const platform::NSRect area{0, 0, screen.frame().width, screen.frame().height};
      covers_.push_back(std::make_shared<platform::NSWindow>(
          area, platform::NSWindowStyle::Borderless, platform::NSBackingStoreType::Buffered, true,
          screen));
      covers_.back()->setLevel(CGWindowLevelForKey(platform::CGWindowLevelKey::BackstopMenu));
      covers_.back()->orderBack(nullptr);
    }
  }
  void refresh() {
    const auto screens = platform::NSScreen::screens();
    for (std::size_t i = 0; i < std::min(screens.size(), covers_.size()); ++i) {
      const auto capture = platform::CGWindowListCreateImage(static_cast<std::uint32_t>(i + 1));
      if (!capture) continue;
      const auto view = platform::NSImageView::initWithFrame(screens[i]->frame());
      view->setImage(platform::NSImage::initWithCGImage(capture, {0, 0}));
      covers_[i]->setFrame(screens[i]->frame(), false, false);
      covers_[i]->setContentView(view);
      covers_[i]->displayIfNeeded();
    }
  }

  X11WindowSystem& x_;
  std::vector<std::shared_ptr<platform::NSWindow>> covers_;
  QTimer afterScreenChange_;
};

linux_desktop::FileDescriptor signalsAsReads() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGUSR1);
  sigaddset(&set, SIGUSR2);
  ::sigprocmask(SIG_BLOCK, &set, nullptr);
  return linux_desktop::FileDescriptor(::signalfd(-1, &set, SFD_CLOEXEC));
}

}  // namespace

int main(int argc, char** argv) {
  const linux_desktop::FileDescriptor incoming = signalsAsReads();
  const QApplication application(argc, argv);
  PlainBackdrop backdrop;
  const auto x = X11WindowSystem::open();
  if (!x) return 1;
  linux_desktop::WallpaperPictures pictures(*x->desktopFacts());
  const bool isTold = QApplication::arguments().contains(QLatin1String("--told"));
  if (isTold) {
    x->setBackdrops(&backdrop);
  } else {
    x->setBackdrops(&pictures);
  }
  const auto parting = qScopeGuard([&x] { x->setBackdrops(nullptr); });
  Desk desk(*x);
  const platform::Runtime runtime(desk);
  Probe probe(*x);
  QSocketNotifier notifier(incoming.get(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
    signalfd_siginfo info{};
    if (::read(incoming.get(), &info, sizeof info) != sizeof info) return;
    if (info.ssi_signo == SIGUSR1) backdrop.turn();
    if (info.ssi_signo == SIGUSR2) probe.toggle();
  });
  return QApplication::exec();
}
