// The picture of every desktop, swapped by the mode and put back.

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <ostream>

#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using testing::HasSubstr;

const std::vector<Rect> kThree{{0, 0, 1280, 720}, {1280, 0, 1024, 600}, {2304, 0, 800, 600}};

/// What a desktop shows before the mode.
struct Start {
  const char* name;
  DesktopIcons icons;
  void (*prepare)(WallpaperDesk& desk);
  /// False: what nobody had written down is afterwards.
  bool settingsComeBack = true;
  int depth = 24;
};

/// What a test runner lists the case under.
void PrintTo(const Start& row, std::ostream* stream) {
  *stream << row.name;
}

void writeXfce(const WallpaperDesk& desk, int monitor, int workspace, const std::string& key,
               const std::string& type, const std::string& value) {
  harness::setXfconf(desk, "xfce4-desktop",
                     "/backdrop/screen0/monitorVNC-" + std::to_string(monitor) + "/workspace" +
                         std::to_string(workspace) + "/" + key,
                     type, value);
}

void startXfcePictures(WallpaperDesk& desk) {
  const std::string pictures[] = {desk.picture("old \"1\" %20.png", kRed),
                                  desk.picture("two.png", kGreen)};
  for (const int monitor : {0, 1}) {
    for (int workspace = 0; workspace < 4; ++workspace)
      writeXfce(desk, monitor, workspace, "last-image", "string", pictures[monitor]);
  }
}

void startXfceSlideShowAndColour(WallpaperDesk& desk) {
  startXfcePictures(desk);
  for (int workspace = 0; workspace < 4; ++workspace) {
    writeXfce(desk, 0, workspace, "backdrop-cycle-enable", "bool", "true");
    writeXfce(desk, 0, workspace, "backdrop-cycle-timer", "uint", "60");
    writeXfce(desk, 1, workspace, "image-style", "int", "0");
  }
}

void startXfceWorkspaces(WallpaperDesk& desk) {
  startXfcePictures(desk);
  harness::setXfconf(desk, "xfce4-desktop", "/backdrop/single-workspace-mode", "bool", "false");
  writeXfce(desk, 0, 1, "last-image", "string", desk.picture("b.png", kBlue));
  writeXfce(desk, 1, 2, "image-style", "int", "0");
}

void startNothing(WallpaperDesk&) {}

void writeMate(const WallpaperDesk& desk, const char* key, const std::string& value) {
  desk.mustRun({"gsettings", "set", "org.mate.background", key, value});
}

void startMateColour(WallpaperDesk& desk) {
  writeMate(desk, "picture-filename", "");
  writeMate(desk, "color-shading-type", "solid");
  writeMate(desk, "primary-color", "#20a040");
}

void startMateSlideShow(WallpaperDesk& desk) {
  const std::string list = desk.home().home() / "show.xml";
  std::ofstream(list) << "<background><static><duration>9999</duration><file>"
                      << desk.picture("one.png", kRed) << "</file></static></background>";
  writeMate(desk, "picture-filename", list);
  writeMate(desk, "picture-options", "zoom");
}

void startLxqtColour(WallpaperDesk& desk) {
  desk.home().writeConfig("pcmanfm-qt/lxqt/settings.conf",
                          "[Desktop]\nBgColor=#2040c0\nWallpaperMode=none\n");
}

void startLxde(WallpaperDesk& desk) {
  const std::string texts[] = {"stretch\nwallpaper=" + desk.picture("old \"1\" %20.png", kRed),
                               "color\nwallpaper=" + desk.picture("unseen.png", kGreen)};
  for (const int monitor : {0, 1}) {
    desk.home().writeConfig("pcmanfm/default/desktop-items-" + std::to_string(monitor) + ".conf",
                            "[*]\nwallpaper_mode=" + texts[monitor] +
                                "\nwallpaper_common=1\ndesktop_bg=#2040c0\ndesktop_fg=#ffffff\n");
  }
}

/// As many set a photograph.
void gradate(const WallpaperDesk& desk) {
  desk.mustRun({"hsetroot", "-add", "#2040c0", "-add", "#c02020", "-gradient", "45"});
}

void startRootPhotograph(WallpaperDesk& desk) {
  desk.server().setMonitors(kThree);
  gradate(desk);
  // A clock, which is no desktop.
  desk.openDesktopWindow({1000, 40, 200, 120}, kBlue);
}

void startRootColour(WallpaperDesk& desk) {
  desk.mustRun({"xsetroot", "-solid", "#2040c0"});
}

void startRootColourOverAPicture(WallpaperDesk& desk) {
  desk.mustRun({"hsetroot", "-solid", "#c02020"});
  startRootColour(desk);
}

void startRootPattern(WallpaperDesk& desk) {
  desk.mustRun({"xsetroot", "-mod", "16", "24", "-fg", "#2040c0", "-bg", "#c02020"});
}

void startRootUnnamed(WallpaperDesk& desk) {
  gradate(desk);
  desk.mustRun({"xprop", "-root", "-remove", "_XROOTPMAP_ID", "-remove", "ESETROOT_PMAP_ID"});
}

void startRootForFewerMonitors(WallpaperDesk& desk) {
  const std::vector<Rect> both = desk.server().monitors();
  desk.server().setMonitors({both.front()});
  gradate(desk);
  desk.server().setMonitors(both);
}

constexpr DesktopIcons kXfce = DesktopIcons::Xfdesktop;
constexpr DesktopIcons kMate = DesktopIcons::Caja;
constexpr DesktopIcons kLxqt = DesktopIcons::PcmanfmQt;
constexpr DesktopIcons kLxde = DesktopIcons::Pcmanfm;
constexpr DesktopIcons kRoot = DesktopIcons::None;

// A picture on Xfce and on MATE is what whole rounds of the mode begin with.
constexpr Start kStarts[] = {
    {"XfceSlideShowAndColour", kXfce, startXfceSlideShowAndColour},
    {"XfceAbsentKeys", kXfce, startNothing},
    {"XfceOnePictureAWorkspace", kXfce, startXfceWorkspaces},
    {"MateColour", kMate, startMateColour},
    {"MateSlideShow", kMate, startMateSlideShow},
    {"LxqtColour", kLxqt, startLxqtColour},
    {"LxqtAbsentFile", kLxqt, startNothing},
    {"LxdePictureAndColour", kLxde, startLxde},
    {"LxdeAbsentFiles", kLxde, startNothing},
    {"RootPhotograph", kRoot, startRootPhotograph},
    {"RootColour", kRoot, startRootColour},
    {"RootColourOverAnOlderPicture", kRoot, startRootColourOverAPicture, false},
    {"RootPattern", kRoot, startRootPattern, false},
    {"RootPictureThatNobodyNames", kRoot, startRootUnnamed, false},
    {"RootPictureForFewerMonitors", kRoot, startRootForFewerMonitors, false},
    {"RootOf16Bits", kRoot, startRootColour, true, 16},
    {"RootOf30Bits", kRoot, startRootColour, true, 30},
};

class SwapFrom : public testing::TestWithParam<Start> {};

INSTANTIATE_TEST_SUITE_P(, SwapFrom, testing::ValuesIn(kStarts),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(SwapFrom, EverythingComesBack) {
  WallpaperDesk desk(GetParam().icons, {.depth = GetParam().depth});
  GetParam().prepare(desk);
  desk.startIcons();
  const std::vector<Image> before = desk.settledMonitors();
  desk.launch();
  const std::string settings = GetParam().settingsComeBack ? desk.backdrops() : std::string();
  desk.swap();
  const harness::XConnection& x = desk.x();
  for (const std::uint32_t workspace : {1U, 0U}) {
    x.askWindowManager(x.root(), "_NET_CURRENT_DESKTOP", {workspace, 0});
    ASSERT_TRUE(
        desk.until([&] { return x.number(x.root(), "_NET_CURRENT_DESKTOP") == workspace; }));
    EXPECT_TRUE(desk.shows(0, kYellow)) << workspace;
  }
  desk.toggle();
  if (GetParam().settingsComeBack) {
    EXPECT_TRUE(desk.settles(settings)) << desk.backdrops() << "\nafter\n" << settings;
  }
  EXPECT_TRUE(desk.until([&] { return desk.settledMonitors() == before; }));
  EXPECT_EQ(desk.program().printed(), "");
}

// --- Xfce ---

TEST(XfceSwap, WhatTheUserChangesMeanwhileStaysAndOnlyWhatWasChangedForThePictureGoesBack) {
  WallpaperDesk xfce(kXfce);
  startXfceSlideShowAndColour(xfce);
  xfce.startIcons();
  xfce.launch();
  xfce.swap();
  writeXfce(xfce, 1, 0, "image-style", "int", "3");
  writeXfce(xfce, 0, 2, "image-style", "int", "1");
  xfce.toggle();
  const std::string settings = xfce.backdrops();
  for (const char* line :
       {"VNC-1/workspace0/image-style +3", "VNC-0/workspace2/image-style +1",
        "VNC-1/workspace1/image-style +0", "VNC-0/workspace2/backdrop-cycle-enable +true",
        "VNC-1/workspace0/last-image +/.*/two.png"})
    EXPECT_THAT(settings, testing::ContainsRegex(line));
}

TEST(XfceSwap, UnpluggedMonitorGetsItsPictureBackTooAndAnAbsentKeyIsAbsentAgain) {
  WallpaperDesk xfce(kXfce);
  startXfcePictures(xfce);
  xfce.startIcons();
  for (const char* key : {"image-style", "last-image"}) {
    xfce.mustRun({"xfconf-query", "-c", "xfce4-desktop", "-r", "-p",
                  "/backdrop/screen0/monitorVNC-1/workspace3/" + std::string(key)});
  }
  xfce.launch();
  const std::string settings = xfce.backdrops();
  xfce.swap();
  xfce.server().setMonitors({xfce.server().monitors().front()});
  xfce.toggle();
  EXPECT_TRUE(xfce.shows(0, kRed));
  EXPECT_TRUE(xfce.settles(settings)) << xfce.backdrops();
}

TEST(XfceSwap, OneReadingServesATurn) {
  WallpaperDesk xfce(kXfce);
  startXfcePictures(xfce);
  xfce.startIcons();
  xfce.launch();
  const auto bus =
      xfce.start({"dbus-monitor", "--session", "path='/org/xfce/Xfconf',arg0='xfce4-desktop'"});
  ASSERT_TRUE(bus->waitForLine("member=NameLost"));
  xfce.swap();
  const auto next = [&] { return bus->waitForLine("method call").value_or("nothing"); };
  EXPECT_THAT(next(), HasSubstr("member=GetAllProperties"));
  constexpr int kPictures = 2 * 4;
  for (int picture = 0; picture < kPictures; ++picture)
    EXPECT_THAT(next(), HasSubstr("member=SetProperty"));
}

TEST(XfceSwap, DesktopThatStartsLaterOrIsReplacedIsFound) {
  WallpaperDesk desk(kXfce);
  startRootColour(desk);
  desk.launch();
  for (int round = 0; round < 3; ++round) {
    if (round > 0) desk.startIcons();
    const std::vector<Image> before = desk.settledMonitors();
    desk.swap();
    desk.toggle();
    EXPECT_TRUE(desk.until([&] { return desk.settledMonitors() == before; })) << round;
  }
}

// --- MATE ---

TEST(MateSwap, HungSettingsServiceIsNotWaitedForAndNothingChanges) {
  WallpaperDesk mate(kMate);
  mate.startIcons();
  writeMate(mate, "primary-color", "#20a040");
  const std::string settings = mate.backdrops();
  mate.launch();
  const std::string told =
      mate.bus()
          .call("org.freedesktop.DBus", "/", "org.freedesktop.DBus.GetConnectionUnixProcessID",
                {"string:ca.desrt.dconf"})
          .value();
  const pid_t service = std::stoi(told.substr(told.rfind(' ')));
  ::kill(service, SIGSTOP);
  mate.program().press();
  for ([[maybe_unused]] const Rect& monitor : mate.server().monitors())
    EXPECT_TRUE(mate.program().process().waitForLine("does not answer"));
  ::kill(service, SIGCONT);
  EXPECT_TRUE(mate.settles(settings)) << mate.backdrops() << "\nbefore\n" << settings;
}

// --- Where nobody could see it ---

TEST(RefusedSwap, SettingsThatReachNobodyAreNotSet) {
  WallpaperDesk mate(kMate, {.environment = {{"GSETTINGS_BACKEND", "memory"}}});
  mate.startIcons();
  mate.launch();
  mate.toggle();
  EXPECT_THAT(mate.program().printed(), HasSubstr("Nobody is known here"));
}

TEST(RefusedSwap, NobodySeesTheRootWindowUnderAShellThatComposesItsOwn) {
  harness::XDesk desk;
  const harness::XConnection& x = desk.x();
  const xcb_window_t manager = xcb_generate_id(x.get());
  xcb_create_window(x.get(), XCB_COPY_FROM_PARENT, manager, x.root(), -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  for (const xcb_window_t window : {x.root(), manager}) {
    xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, window, x.atom("_NET_SUPPORTING_WM_CHECK"),
                        XCB_ATOM_WINDOW, 32, 1, &manager);
  }
  const std::string name = "Mutter (Muffin)";
  xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE, manager, x.atom("_NET_WM_NAME"),
                      x.atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(name.size()),
                      name.data());
  harness::ShortcutProgram program(desk, {"Wallpaper"},
                                   harness::chosenPicture(desk.picture("chosen.png", kYellow)));
  const std::uint32_t before = desk.screen().pixel(1, 1);
  const auto becomes = [&](std::uint32_t colour) {
    return desk.until([&] { return desk.screen().pixel(1, 1) == colour; });
  };
  program.toggle();
  EXPECT_TRUE(becomes(kYellow)) << "while it does not compose";
  program.toggle();
  EXPECT_TRUE(becomes(before));
  xcb_set_selection_owner(x.get(), manager, x.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
  xcb_flush(x.get());
  // Over the bus, which is read behind the turn that put the picture back: until then the program
  // stands by the desktop that it has seen.
  desk.toggleMode();
  EXPECT_TRUE(program.process().waitForLine("Nobody is known here"));
}

// --- The bare screen ---

/// In pages, of a process that lives.
long residentMemory(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/statm");
  long whole = 0;
  long resident = 0;
  file >> whole >> resident;
  return resident;
}

TEST(RootSwap, TheServerGetsItsMemoryBack) {
  WallpaperDesk bare(kRoot);
  startRootPhotograph(bare);
  bare.launch();
  const auto round = [&] {
    bare.swap();
    bare.toggle();
  };
  round();
  const pid_t server = bare.server().process().pid();
  const long memory = residentMemory(server);
  for (int more = 0; more < 3; ++more) round();
  // Copies that stay would have been three by now; what a server holds beside them comes and goes.
  constexpr long kAPicture = 3104L * 720 * 4 / 4096;
  EXPECT_LT(residentMemory(server), memory + kAPicture * 3 / 2);
  // The next setter frees ours as it frees any other's.
  bare.mustRun({"hsetroot", "-solid", "#2040c0"});
  EXPECT_TRUE(bare.shows(0, kBlue));
}

}  // namespace
}  // namespace wallpaper_test
