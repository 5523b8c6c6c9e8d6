#include "bench/CompositorDesk.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "bench/DeskProgram.h"

namespace bench {

using namespace std::chrono_literals;
using harness::Compositor;
using harness::WaylandDesk;

namespace {

constexpr const char* kName = "org.calmdeck.Calmdeck";
constexpr int kPrograms = 10;
constexpr std::uint32_t kFirstColour = 0xc02030;
/// Of what the desktop shows, which is seen only as a cover: nothing here draws icons themselves.
constexpr std::uint32_t kCover = 0x20a040;

}  // namespace

CompositorDesk::CompositorDesk(Compositor kind, int windows)
    : desk_({.compositor = kind,
             .bar = true,
             .sound = harness::SoundServerKind::PulseAudio,
             .configuration = harness::allInTheMiddle(kind, "^other")}) {
  liveOn(desk_);
  startIcons();
  openWindows(windows);
  sink_ = std::make_unique<MuteWatch>("out1");
  bus_.reset(g_dbus_connection_new_for_address_sync(
      std::getenv("DBUS_SESSION_BUS_ADDRESS"),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, nullptr));
  if (!bus_) throw std::runtime_error("the session bus cannot be reached");
  desk_.writeSettings({"DesktopIcons", "HideActiveApps", "SpeakerOff"});
  program_ = desk_.startCalmdeck();
  const auto opens = [this] { return desk_.bus().hasOwner(kName) && desk_.trayIcon().has_value(); };
  if (!desk_.until(opens)) throw std::runtime_error("Calmdeck: " + program_->errorOutput());
  // Its panel opens half a second after the start.
  std::this_thread::sleep_for(2s);
  desk_.input().key("Escape");
}

void CompositorDesk::startIcons() {
  const std::string picture = desk_.picture("picture.png", kCover);
  desk_.home().writeConfig("pcmanfm-qt/bench/settings.conf",
                           "[Desktop]\nWallpaper=" + picture + "\nWallpaperMode=stretch\n");
  icons_ = desk_.start({"pcmanfm-qt", "--profile=bench", "--desktop"},
                       {{"QT_QPA_PLATFORM", "offscreen"}});
  if (!desk_.until([this] { return desk_.bus().hasOwner("org.pcmanfm.PCManFM"); }))
    throw std::runtime_error("pcmanfm-qt: " + icons_->errorOutput());
}

// KWin opens them where the pointer is, and none right over another.
void CompositorDesk::openWindows(int windows) {
  desk_.input().moveTo(WaylandDesk::kOutputWidth / 2, WaylandDesk::kOutputHeight / 2);
  for (int program = 0; program < kPrograms; ++program) {
    const int count = (windows + kPrograms - 1 - program) / kPrograms;
    if (count == 0) continue;
    top_ = kFirstColour + static_cast<std::uint32_t>(program);
    desk_.openWindow("other" + std::to_string(program), top_, count);
  }
  const harness::Rect first{0, 0, WaylandDesk::kOutputWidth, WaylandDesk::kOutputHeight};
  static_cast<void>(desk_.screen().settled(first, 500ms));
  constexpr int kInside = 8;
  const harness::Rect top = desk_.areaOf(top_).value();
  onTop_ = {top.x + top.width - kInside, top.y + top.height - kInside};
}

Clock::time_point CompositorDesk::toggle() {
  const Clock::time_point start = Clock::now();
  g_dbus_connection_call(bus_.get(), kName, "/org/calmdeck/Calmdeck", "org.freedesktop.Application",
                         "ActivateAction",
                         g_variant_new("(sava{sv})", "toggle-presentation-mode", nullptr, nullptr),
                         nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
  return start;
}

// The last one to come back is the one on top.
Clock::time_point CompositorDesk::awaitWindows(bool hidden) {
  return await(onTop_.first, onTop_.second, [&](std::uint32_t pixel) {
    return hidden ? pixel - kFirstColour >= kPrograms : pixel == top_;
  });
}

Clock::time_point CompositorDesk::awaitCovers(bool covered) {
  return await(WaylandDesk::kOutputWidth + 40, WaylandDesk::kOutputHeight - 40,
               [&](std::uint32_t pixel) { return (pixel == kCover) == covered; });
}

Clock::time_point CompositorDesk::await(int x, int y,
                                        const std::function<bool(std::uint32_t pixel)>& fact) {
  const auto deadline = Clock::now() + harness::kPatience;
  for (std::uint32_t pixel = 0; !fact(pixel = desk_.screen().pixel(x, y));) {
    if (Clock::now() < deadline) continue;
    std::ostringstream message;
    message << "the screen does not change, #" << std::hex << pixel << std::dec << " stays at " << x
            << ", " << y << ": " << program_->errorOutput();
    throw std::runtime_error(message.str());
  }
  return Clock::now();
}

}  // namespace bench
