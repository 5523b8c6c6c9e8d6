#include <unistd.h>

#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "contract/LinuxContractDesk.h"
#include "desktop/harness/WaylandDesk.h"

namespace contract {
namespace {

using harness::Compositor;
using harness::Image;
using harness::Rect;
using harness::WaylandDesk;

/// Above what is looked at, for the pointer.
constexpr int kRim = 32;
/// Where windows open.
constexpr Rect kView{0, kRim, WaylandDesk::kOutputWidth, WaylandDesk::kOutputHeight - kRim};
constexpr std::uint32_t kApplication = 0xc02030;

/// By the name of the case.
using Reasons = std::map<std::string, std::string>;

const Reasons kOnAll{
    {"AScreenHasAPlaceAndANameAndIsToldOnceWhenItGoesOrComes",
     "sway 1.7 turns no monitor off; elsewhere the covers' tests change them"},
    {"AnItemReportsClicksOfWhichTheOneForItsMenuIsAnActOutsideItsWindow",
     "waybar leaves the menu of an item on the screen that goes while it opens"},
    {"AnotherSpaceIsToldOnce", "covers stand on every workspace, so nobody is told of one"},
};
constexpr const char* kNoKeys = "labwc gives its keys to no program";
const Reasons kOnLabwc{
    {"AnAlertIsAnsweredOnceAndLater", "labwc does not tell who has the keyboard"},
    {"ACombinationIsGivenOnceUntilItIsGivenBack", kNoKeys},
    {"APressAndItsReleaseAreReportedForAsLongAsTheCombinationIsHeld", kNoKeys},
    {"AReservedCombinationIsGivenToNobody", kNoKeys},
    {"OptionsAreKeptAsTheyAreGivenAndSoIsWhatTheUserChanges",
     "the user's picture stays below the program's own"},
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

/// The desk of the process, with a picture: by sway itself, or by a swaybg of the user's.
class PictureDesk {
 public:
  explicit PictureDesk(Compositor kind) : desk({.compositor = kind}) {
    harness::writePng(harness::dusk(WaylandDesk::kOutputWidth, WaylandDesk::kOutputHeight), file_);
    const Image bare = desk.screen().area(kView);
    show();
    if (!desk.until([&] { return desk.screen().area(kView) != bare; }))
      throw std::runtime_error("swaybg shows nothing");
    picture_ = desk.screen().settled(kView, std::chrono::milliseconds(200), harness::kPatience);
  }

  /// Nothing else is to be seen after this.
  void clear() {
    if (isBare()) return;
    if (desk.kind() == Compositor::Sway) show();
    EXPECT_TRUE(desk.until([&] { return isBare(); })) << "something is left on the screen";
  }
  /// What is to be seen, but for the picture.
  [[nodiscard]] std::optional<Rect> windows() const {
    auto area = harness::changedArea(picture_, desk.screen().area(kView));
    if (area) area->y += kView.y;
    return area;
  }

  /// By sway itself.
  void show(const std::string& output, const std::string& mode) {
    EXPECT_TRUE(desk.run({"swaymsg", "output", output, "bg", file_, mode}).succeeded());
  }

  WaylandDesk desk;
  Hands hands{desk.input()};

 private:
  [[nodiscard]] bool isBare() const { return !windows(); }
  void show() {
    if (desk.kind() == Compositor::Sway) {
      show("*", "fill");
    } else {
      user_ = desk.start({"swaybg", "-o", "*", "-m", "fill", "-i", file_});
    }
  }

  std::string file_ = desk.home().home() / "evening.png";
  std::unique_ptr<harness::Process> user_;
  Image picture_;
};

PictureDesk& pictureDesk(Compositor kind) {
  static PictureDesk desk(kind);
  if (desk.desk.kind() != kind) throw std::runtime_error("a process has one compositor");
  return desk;
}

class WaylandContractDesk final : public LinuxContractDesk {
 public:
  explicit WaylandContractDesk(Compositor kind)
      : LinuxContractDesk(
            {pictureDesk(kind).desk, pictureDesk(kind).desk.screen(), pictureDesk(kind).hands, {}}),
        around_(pictureDesk(kind)) {}
  ~WaylandContractDesk() override {
    stop();
    if (application_ != nullptr) application_->process->terminate();
    around_.clear();
  }

  [[nodiscard]] std::string whyNot(const std::string& name) override {
    if (const auto found = kOnAll.find(name); found != kOnAll.end()) return found->second;
    const auto onLabwc = kOnLabwc.find(name);
    if (desk_.kind() == Compositor::Labwc && onLabwc != kOnLabwc.end()) return onLabwc->second;
    return {};
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
  void changeLayout(const platform::port::ScreenId& screen) override {
    const std::string mode = ++changes_ % 2 == 0 ? "fit" : "center";
    around_.show(screen, mode);
    EXPECT_TRUE(runUntil([&] { return modeOf(screen) == mode; }));
    isSeen_ = false;
  }
  /// Changes are by whole swaybgs, of which each shows but one layout.
  [[nodiscard]] std::string layout(const platform::port::ScreenId& screen) override {
    const bool isNew = std::exchange(isSeen_, true);
    EXPECT_TRUE(runUntil([&] {
      const pid_t now = desk_.swaysSwaybg().first;
      return now != 0 && (!isNew || now != last_);
    }));
    last_ = desk_.swaysSwaybg().first;
    return modeOf(screen);
  }
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
  PictureDesk& around_;
  WaylandDesk& desk_ = around_.desk;
  /// As sway's own swaybg was told.
  [[nodiscard]] std::string modeOf(const platform::port::ScreenId& screen) {
    const std::string words = desk_.swaysSwaybg().second;
    const std::string output = std::string("-o") + '\0' + screen + '\0';
    const std::string option = std::string("-m") + '\0';
    const std::size_t place = words.find(option, words.find(output));
    return place == std::string::npos ? "" : words.c_str() + place + option.size();
  }

  harness::ForeignWindow* application_ = nullptr;
  Rect applicationArea_;
  int changes_ = 0;
  /// The swaybg whose layout was told last, if that was not the user's own change.
  pid_t last_ = 0;
  bool isSeen_ = false;
};

std::vector<DeskKind> kinds() {
  std::vector<DeskKind> all;
  for (const Compositor kind : harness::installedOf({Compositor::Sway, Compositor::Labwc})) {
    std::ostringstream name;
    name << kind;
    all.push_back({name.str(), [kind] { return std::make_unique<WaylandContractDesk>(kind); }});
  }
  return all;
}

// Not every release has one.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DesktopContract);
INSTANTIATE_TEST_SUITE_P(Wayland, DesktopContract, ::testing::ValuesIn(kinds()),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace contract
