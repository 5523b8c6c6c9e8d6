#pragma once

#include <sys/types.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/harness/Desk.h"
#include "desktop/harness/DesktopPrograms.h"
#include "desktop/harness/Input.h"
#include "desktop/harness/Screen.h"
#include "desktop/harness/WaylandClient.h"
#include "desktop/harness/XServer.h"

namespace harness {

/// What a private Wayland desktop consists of. The defaults: a compositor and a bus, nothing else.
struct WaylandOptions {
  Compositor compositor = Compositor::Sway;
  /// Side by side, each of kOutputWidth by kOutputHeight.
  int outputs = 2;
  /// Waybar at the top of the first of them, with nothing but a tray in it.
  bool bar = false;
  std::optional<SoundServerKind> sound = {};
  /// X11 programs find a server, too; else there is none.
  bool xwayland = false;
  /// Added to the compositor's own configuration: lines for sway, elements of rc.xml for labwc,
  /// those of kwinrc for KWin.
  std::string configuration = {};
  /// Added to what every program of this desktop inherits, the compositor included.
  Environment environment = {};
};

/// A configuration by which every window comes in the middle, over the one before; on sway those of
/// the programs whose names match `names`.
[[nodiscard]] std::string allInTheMiddle(Compositor compositor, const std::string& names);

/// A window of a program that is not ours. It has a colour that nothing else has, and tells by that
/// where it shows, and whether.
struct ForeignWindow {
  std::uint32_t colour = 0;
  /// Says "active" and "inactive" as the keyboard comes and goes, "key TEXT" and "press".
  std::unique_ptr<Process> process;
};

/// A private Wayland desktop for one test: own compositor without a screen, session bus, home and
/// runtime folder, and real programs on it. As XDesk it returns when all is ready, throws naming
/// what is not, and leaves nothing. Coordinates are those of the whole desktop, where no monitor is
/// scaled also its pixels.
///
/// sway and labwc have no screen at all; a mouse and a keyboard of the test's own are plugged into
/// their seat. KWin shows its monitors as windows of a private X server.
class WaylandDesk final : public Desk {
 public:
  static constexpr int kOutputWidth = 1280;
  static constexpr int kOutputHeight = 720;

  explicit WaylandDesk(const WaylandOptions& options = {});
  ~WaylandDesk() override;

  [[nodiscard]] Compositor kind() const { return kind_; }
  [[nodiscard]] Process& compositor() { return *compositor_; }
  /// See VirtualDevices; not on KWin.
  void useLayouts(const std::string& layouts, std::uint32_t inEffect);
  /// Sees what the compositor tells any client.
  [[nodiscard]] WaylandClient& client() { return *client_; }

  /// The monitors that are on, from left to right.
  [[nodiscard]] std::vector<WaylandOutput> outputs() { return client_->outputs(); }
  /// What the monitor itself shows, in its own pixels. Where it is scaled and no window of a
  /// server, by a whole factor.
  [[nodiscard]] Image pixelsOf(const WaylandOutput& output) const;
  /// Each returns once the compositor has told its clients so. False: it cannot turn one off, as
  /// sway 1.7, which can but make another one (swaymsg create_output).
  [[nodiscard]] bool turnOff(const std::string& output);
  void turnOn(const std::string& output);
  void scale(const std::string& output, double factor);

  /// The words by which sway has started its own swaybg, a NUL after each, and the process; empty
  /// while there is none.
  [[nodiscard]] std::pair<pid_t, std::string> swaysSwaybg() const;
  /// Has the compositor read its configuration anew, and returns when it was told so.
  void reload();

  /// On the output of that place, from the left; at its upper or its lower edge.
  void startBar(std::size_t output = 0, Edge edge = Edge::Top);
  void killBar() { bar_->kill(); }
  [[nodiscard]] std::vector<Rect> panelAreas() const override;

  /// Returns when it is on the screen, or one of `count` is. They last as long as the desktop.
  ForeignWindow& openWindow(const std::string& name, std::uint32_t colour, int count = 1);
  /// A third into it; throws when that is not to be seen.
  void clickOn(const ForeignWindow& window) const;
  /// The bounds of all pixels of exactly that colour; absent when none is to be seen.
  [[nodiscard]] std::optional<Rect> areaOf(std::uint32_t colour) const;

 private:
  [[nodiscard]] std::vector<std::string> command(const WaylandOptions& options) const;
  void takeEnvironment(const WaylandOptions& options);
  void connect(int outputs);
  void spreadHostWindows();
  /// In the words of swaymsg and kscreen-doctor, and in those of wlr-randr. False when it is
  /// refused.
  [[nodiscard]] bool configureOutput(const std::string& output, const std::string& wanted,
                                     const std::vector<std::string>& forLabwc,
                                     const std::function<bool()>& isSo);

  Compositor kind_;
  std::unique_ptr<XServer> server_;  // the screen of KWin
  std::unique_ptr<XConnection> x_;
  std::unique_ptr<Process> compositor_;
  std::unique_ptr<WaylandClient> client_;
  std::unique_ptr<Process> bar_;
  Rect barArea_;
  std::vector<std::unique_ptr<ForeignWindow>> windows_;
};

}  // namespace harness
