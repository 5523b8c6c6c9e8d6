#include "desktop/harness/DesktopConfiguration.h"

namespace harness {

namespace fs = std::filesystem;

namespace {

using Backdrops = std::vector<MonitorBackdrop>;

constexpr const char* kPcmanfmQtFile = "pcmanfm-qt/lxqt/settings.conf";
constexpr const char* kXfceChannel = "xfce4-desktop";

std::string pcmanfmFile(std::size_t monitor) {
  return "pcmanfm/default/desktop-items-" + std::to_string(monitor) + ".conf";
}

std::string styleOf(const MonitorBackdrop& backdrop, const char* usual) {
  return backdrop.style.empty() ? usual : backdrop.style;
}

void configureXfce(const XDesk& desk, const Backdrops& backdrops) {
  for (std::size_t i = 0; i < backdrops.size(); ++i) {
    const std::string key = "/backdrop/screen0/monitorVNC-" + std::to_string(i) + "/workspace0/";
    const std::string picture = backdrops[i].picture.string();
    setXfconf(desk, kXfceChannel, key + "image-style", "int",
              styleOf(backdrops[i], picture.empty() ? "0" : "3"));
    if (!picture.empty()) setXfconf(desk, kXfceChannel, key + "last-image", "string", picture);
    if (backdrops[i].isShaded) setXfconf(desk, kXfceChannel, key + "color-style", "int", "2");
  }
  for (const char* icon : {"home", "filesystem", "trash", "removable"}) {
    setXfconf(desk, kXfceChannel, std::string("/desktop-icons/file-icons/show-") + icon, "bool",
              "false");
  }
}

void configureMate(const XDesk& desk, const MonitorBackdrop& backdrop) {
  const auto set = [&](const char* schema, const std::string& key, const std::string& value) {
    desk.mustRun({"gsettings", "set", schema, key, value});
  };
  constexpr const char* kBackground = "org.mate.background";
  set(kBackground, "picture-filename", backdrop.picture);
  set(kBackground, "picture-options", styleOf(backdrop, "zoom"));
  set(kBackground, "primary-color", backdrop.colour);
  set(kBackground, "secondary-color", "#a08040");
  set(kBackground, "color-shading-type", backdrop.isShaded ? "horizontal-gradient" : "solid");
  set(kBackground, "background-fade", "false");
  for (const char* icon :
       {"computer-icon-visible", "home-icon-visible", "trash-icon-visible", "volumes-visible"})
    set("org.mate.caja.desktop", icon, "false");
}

void configurePcmanfm(const XDesk& desk, const Backdrops& backdrops) {
  for (std::size_t i = 0; i < backdrops.size(); ++i) {
    const std::string picture = backdrops[i].picture.string();
    desk.home().writeConfig(
        pcmanfmFile(i),
        "[*]\nwallpaper_mode=" + styleOf(backdrops[i], picture.empty() ? "color" : "stretch") +
            "\nwallpaper=" + picture + "\ndesktop_bg=" + backdrops[i].colour +
            "\ndesktop_fg=#ffffff\nshow_documents=0\n"
            "show_trash=0\nshow_mounts=0\n");
  }
}

void configurePcmanfmQt(const XDesk& desk, const MonitorBackdrop& backdrop) {
  const std::string picture = backdrop.picture.string();
  desk.home().writeConfig(
      kPcmanfmQtFile,
      "[Desktop]\nWallpaperMode=" + styleOf(backdrop, picture.empty() ? "none" : "stretch") +
          (picture.empty() ? "" : "\nWallpaper=" + picture) +
          (backdrop.onEach ? "\nPerScreenWallpaper=true" : "") + "\nBgColor=" + backdrop.colour +
          "\nDesktopShortcuts=@Invalid()\n");
}

void setRoot(const XDesk& desk, const MonitorBackdrop& backdrop) {
  if (backdrop.picture.empty()) {
    desk.mustRun({"xsetroot", "-solid", backdrop.colour});
  } else {
    desk.mustRun({"hsetroot", "-cover", backdrop.picture});
  }
}

std::string rootPicture(const XDesk& desk) {
  const auto pixmap = desk.x().number(desk.x().root(), "_XROOTPMAP_ID");
  if (!pixmap) return "no picture\n";
  const Image picture = imageOf(desk.x(), *pixmap, desk.x().screenArea());
  std::size_t sum = 0;
  for (const std::uint32_t pixel : picture.pixels) sum = sum * 31 + pixel;
  return "picture " + std::to_string(sum) + "\n";
}

std::string fileOrAbsent(const XDesk& desk, const std::string& name) {
  const fs::path file = desk.home().config() / name;
  return fs::exists(file) ? name + "\n" + textOf(file) : name + " is absent\n";
}

std::vector<std::string> reader(const XDesk& desk, NotificationDaemon kind) {
  switch (kind) {
    case NotificationDaemon::XfceNotifyd:
      return {"xfconf-query", "-c", "xfce4-notifyd", "-p", "/do-not-disturb"};
    case NotificationDaemon::Dunst:
      return {"dunstctl", "is-paused"};
    case NotificationDaemon::Mate:
      return {"gsettings", "get", "org.mate.NotificationDaemon", "do-not-disturb"};
    default:
      return {"sed", "-n", "s/^doNotDisturb=//p", desk.home().config() / "lxqt/notifications.conf"};
  }
}

}  // namespace

void setXfconf(const XDesk& desk, const std::string& channel, const std::string& key,
               const std::string& type, const std::string& value) {
  desk.mustRun({"xfconf-query", "-c", channel, "-p", key, "-n", "-t", type, "-s", value});
}

DeskOptions everydayDesktop() {
  return {.windowManager = WindowManager::Xfwm4,
          .panel = Panel::XfcePanel,
          .notifications = NotificationDaemon::Dunst,
          .sound = SoundServerKind::PulseAudio};
}

void configureIcons(const XDesk& desk, DesktopIcons kind, const Backdrops& backdrops) {
  fs::create_directories(desk.home().home() / "Desktop");
  switch (kind) {
    case DesktopIcons::None:
      setRoot(desk, backdrops.at(0));
      break;
    case DesktopIcons::Xfdesktop:
      configureXfce(desk, backdrops);
      break;
    case DesktopIcons::Pcmanfm:
      configurePcmanfm(desk, backdrops);
      break;
    case DesktopIcons::Caja:
      configureMate(desk, backdrops.at(0));
      break;
    case DesktopIcons::PcmanfmQt:
      configurePcmanfmQt(desk, backdrops.at(0));
      break;
  }
}

std::string backdropSettings(const XDesk& desk, DesktopIcons kind) {
  switch (kind) {
    case DesktopIcons::None:
      return rootPicture(desk);
    case DesktopIcons::Xfdesktop:
      return desk.outputOf({"xfconf-query", "-c", kXfceChannel, "-lv"});
    case DesktopIcons::Pcmanfm:
      return fileOrAbsent(desk, pcmanfmFile(0)) + fileOrAbsent(desk, pcmanfmFile(1));
    case DesktopIcons::Caja:
      return desk.outputOf({"dconf", "dump", "/org/mate/desktop/"}) +
             desk.outputOf({"gsettings", "list-recursively", "org.mate.background"});
    case DesktopIcons::PcmanfmQt:
      return fileOrAbsent(desk, kPcmanfmQtFile);
  }
  return {};
}

std::optional<bool> doNotDisturb(const XDesk& desk, NotificationDaemon kind) {
  const std::string answer = desk.run(reader(desk, kind)).output;
  if (answer == "true\n") return true;
  if (answer == "false\n") return false;
  return std::nullopt;
}

}  // namespace harness
