#include <unistd.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "contract/LinuxContractDesk.h"
#include "desktop/harness/WaylandDesk.h"

namespace contract {
namespace {

using harness::Image;
using harness::Rect;
using harness::WaylandDesk;

/// Above what is looked at, for the pointer.
constexpr int kRim = 32;
/// Where windows open.
constexpr Rect kView{0, kRim, WaylandDesk::kOutputWidth, WaylandDesk::kOutputHeight - kRim};
constexpr std::uint32_t kApplication = 0xc02030;

/// By the name of the case.
const std::map<std::string, std::string> kReasons{
    {"AScreenHasAPlaceAndANameAndIsToldOnceWhenItGoesOrComes",
     "sway 1.7 turns no monitor off; elsewhere the covers' tests change them"},
    {"AnItemReportsClicksOfWhichTheOneForItsMenuIsAnActOutsideItsWindow",
     "waybar leaves the menu of an item on the screen that goes while it opens"},
    {"AnotherSpaceIsToldOnce", "covers stand on every workspace, so nobody is told of one"},
    {"OptionsAreKeptAsTheyAreGivenAndSoIsWhatTheUserChanges",
     "only swaybg's start tells a layout, which just after our own change is not the user's"},
};

/// Where there is no screen the pointer is part of every picture: this one goes away
/// after a click.
class Hands final : public harness::Input {
 public:
  explicit Hands(const harness::Input& devices) : devices_(devices) { rest(); }

  void moveTo(int x, int y) const override { devices_.moveTo(x, y); }
  void press(harness::Button button) const override { devices_.press(button); }
  void release(harness::Button button) const override {
    devices_.release(button);
    rest();
  }
  void keyDown(std::string_view name) const override { devices_.keyDown(name); }
  void keyUp(std::string_view name) const override { devices_.keyUp(name); }

 private:
  void rest() const { devices_.moveTo(kRim / 4, kRim / 4); }

  const harness::Input& devices_;
};

/// The desk of the process, with a picture.
class PictureDesk {
 public:
  PictureDesk() {
    harness::writePng(harness::dusk(WaylandDesk::kOutputWidth, WaylandDesk::kOutputHeight), file_);
    const Image bare = desk.screen().area(kView);
    show();
    if (!desk.until([&] { return desk.screen().area(kView) != bare; }))
      throw std::runtime_error("swaybg shows nothing");
    picture_ = desk.screen().settled(kView, std::chrono::milliseconds(200));
  }

  /// Nothing else is to be seen after this.
  void clear() {
    if (isBare()) return;
    show();
    EXPECT_TRUE(desk.until([&] { return isBare(); })) << "something is left on the screen";
  }
  /// What is to be seen, but for the picture.
  [[nodiscard]] std::optional<Rect> windows() const {
    auto area = harness::changedArea(picture_, desk.screen().area(kView));
    if (area) area->y += kView.y;
    return area;
  }

  WaylandDesk desk{{.compositor = harness::Compositor::Sway}};
  Hands hands{desk.input()};

 private:
  [[nodiscard]] bool isBare() const { return !windows(); }
  void show() {
    EXPECT_TRUE(desk.run({"swaymsg", "output", "*", "bg", file_, "fill"}).succeeded());
  }

  std::string file_ = desk.home().home() / "evening.png";
  Image picture_;
};

PictureDesk& pictureDesk() {
  static PictureDesk desk;
  return desk;
}

class SwayContractDesk final : public LinuxContractDesk {
 public:
  SwayContractDesk()
      : LinuxContractDesk(
            {pictureDesk().desk, pictureDesk().desk.screen(), pictureDesk().hands, {}}) {}
  ~SwayContractDesk() override {
    stop();
    if (application_ != nullptr) application_->process->terminate();
    around_.clear();
  }

  [[nodiscard]] std::string whyNot(const std::string& name) override {
    const auto found = kReasons.find(name);
    return found == kReasons.end() ? std::string() : found->second;
  }

  /// There is one at a time in each case, and its own window is all that shows.
  [[nodiscard]] std::size_t visibleWindows() override { return around_.windows() ? 1 : 0; }
  void click(platform::NSView&) override {
    const Rect area = around_.windows().value();
    around_.hands.click(area.centreX(), area.centreY());
  }
  void answerAlert(std::size_t button) override {
    const std::string focused = "[con_id=__focused__ pid=" + std::to_string(getpid()) + "] nop";
    EXPECT_TRUE(runUntil([&] { return desk_.run({"swaymsg", focused}).succeeded(); }));
    while (button-- > 0) around_.hands.key("Tab");
    around_.hands.key("space");
  }

  void setMonitors(const std::vector<platform::NSSize>&) override {
    throw std::logic_error("as they are");
  }
  void goToSpace(std::uint32_t) override { throw std::logic_error("none is told"); }
  void changeLayout(const platform::port::ScreenId&) override {
    throw std::logic_error("as it is");
  }
  [[nodiscard]] std::string layout(const platform::port::ScreenId&) override { return {}; }
  [[nodiscard]] bool tellsApplicationsApart() override { return false; }
  void openApplication(const std::string& title) override {
    application_ = &desk_.openWindow(title, kApplication);
    applicationArea_ = desk_.areaOf(kApplication).value();
  }
  [[nodiscard]] bool isApplicationSeen() override {
    return desk_.screen().pixel(applicationArea_.centreX(), applicationArea_.centreY()) ==
           kApplication;
  }

 private:
  PictureDesk& around_ = pictureDesk();
  WaylandDesk& desk_ = around_.desk;
  harness::ForeignWindow* application_ = nullptr;
  Rect applicationArea_;
};

INSTANTIATE_TEST_SUITE_P(Sway, DesktopContract,
                         ::testing::Values(DeskKind{
                             "Sway", [] { return std::make_unique<SwayContractDesk>(); }}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace contract
