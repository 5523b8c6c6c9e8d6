// Desktops that keep their picture in GSettings, by the names that they own on the bus.

#include <gmock/gmock.h>

#include <QDBusConnection>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/wallpaper/Timetable.h"
#include "desktop/linux/wallpaper/WallpaperPictures.h"
#include "desktop/wallpaper/PrivateBus.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;
using testing::ElementsAre;
using testing::HasSubstr;

/// "schema key" and the value as GLib prints it; what is not set is not here.
using Settings = std::map<std::string, std::string>;

constexpr const char* kCinnamon = "org.cinnamon.desktop.background";
constexpr const char* kSlideShow = "org.cinnamon.desktop.background.slideshow";
constexpr const char* kGnome = "org.gnome.desktop.background";
constexpr const char* kInterface = "org.gnome.desktop.interface";

const std::vector<std::pair<const char*, std::vector<std::string>>> kSchemas{
    {kCinnamon, {"picture-uri", "picture-options", "primary-color"}},
    {kSlideShow, {"slideshow-enabled"}},
    {kGnome, {"picture-uri", "picture-uri-dark", "picture-options", "primary-color"}},
    {kInterface, {"color-scheme"}}};

/// A folder for the settings of this process, and for the pictures.
QTemporaryDir& folder() {
  static QTemporaryDir folder;
  return folder;
}

/// Who runs, by the names on the bus and the class of the window under the icons.
struct Shell {
  std::vector<const char*> busNames;
  const char* windowClass = "";
};

const Shell kCinnamonRuns{{"org.Cinnamon"}};
const Shell kCinnamonWithIcons{{"org.Cinnamon"}, "Nemo-desktop"};
const Shell kGnomeRuns{{"org.gnome.Shell"}};
const Shell kBudgieRuns{{"org.gnome.Shell", "org.budgie_desktop.BudgieWM"}};
const Shell kFlashbackRuns{{"org.gnome.Shell", "org.gnome.Flashback"}, "Gnome-flashback"};

class Facts final : public DesktopFacts {
 public:
  Facts()
      : DesktopFacts([] {
          return std::vector{Monitor{QStringLiteral("one"), {0, 0, 60, 40}},
                             Monitor{QStringLiteral("two"), {60, 0, 30, 40}}};
        }) {}
  DesktopWindow desktopWindow() override { return window; }

  DesktopWindow window;
};

class GSettingsTest : public PrivateBusTest {
 protected:
  GSettingsTest() : PrivateBusTest("") {
    qputenv("GSETTINGS_BACKEND", "keyfile");
    qputenv("XDG_CONFIG_HOME", folder().path().toUtf8());
    for (const auto& [schema, keys] : kSchemas) {
      settings_[schema] = GuardedSettings::open(schema, keys);
      if (!settings_[schema]) throw std::runtime_error(std::string(schema) + " is not installed");
    }
    change({});
  }
  ~GSettingsTest() override { end(); }

  /// That shell, and none of before, with what the user has set.
  void run(const Shell& shell, const Settings& settings) {
    end();
    for (const char* name : shell.busNames) {
      owned_ << QLatin1String(name);
      EXPECT_TRUE(QDBusConnection::sessionBus().registerService(owned_.back()));
    }
    const QString windowClass = QLatin1String(shell.windowClass);
    facts.window = {windowClass.isEmpty() ? 0U : 7U, windowClass, 0};
    change(settings);
    QCoreApplication::processEvents();  // who runs is looked for once a turn
  }
  /// Everything else becomes unset.
  void change(const Settings& wanted) {
    for (const auto& [schema, keys] : kSchemas) {
      for (const std::string& key : keys) {
        const auto found = wanted.find(schema + (" " + key));
        EXPECT_TRUE(settings_[schema]->setUserValue(
            key, found == wanted.end() ? std::nullopt : std::optional(found->second)));
      }
    }
  }
  [[nodiscard]] Settings settings() {
    Settings all;
    for (const auto& [schema, keys] : kSchemas) {
      for (const std::string& key : keys) {
        if (const auto value = settings_[schema]->userValue(key))
          all[schema + (" " + key)] = *value;
      }
    }
    return all;
  }
  /// From now on, each key that becomes another.
  void watch(std::vector<std::string>& keys) {
    for (auto& [schema, each] : settings_)
      each->setChanged([&keys](const std::string& key) { keys.push_back(key); });
  }
  /// As the mode does. The reasons of refusals.
  [[nodiscard]] std::string swap() {
    old_.clear();
    for (const char* screen : {"one", "two"}) {
      if (const auto path = pictures.path(screen)) old_.emplace_back(screen, *path);
    }
    std::string reasons;
    for (const char* screen : {"one", "two"}) reasons += set(chosen, screen);
    return reasons;
  }
  [[nodiscard]] std::string putBack() {
    std::string reasons;
    for (const auto& [screen, path] : old_) reasons += set(path, screen);
    return reasons;
  }

  /// A picture of that name; where it is.
  static QString saved(const char* name) {
    QString path = folder().filePath(QLatin1String(name));
    EXPECT_TRUE(QImage(9, 9, QImage::Format_RGB32).save(path));
    return path;
  }

  const std::string chosen = saved("a b' 100%.png").toStdString();
  /// As the settings have it.
  const std::string uri = "\"file://" + folder().path().toStdString() + "/a%20b'%20100%25.png\"";
  Facts facts;
  WallpaperPictures pictures{facts};

 private:
  void end() {
    for (const QString& name : std::exchange(owned_, {}))
      QDBusConnection::sessionBus().unregisterService(name);
  }
  [[nodiscard]] std::string set(const std::string& path, const std::string& screen) {
    return pictures.set(path, screen, pictures.options(screen).value_or(Dictionary())).value_or("");
  }

  std::map<std::string, std::unique_ptr<GuardedSettings>> settings_;
  std::vector<std::pair<std::string, std::string>> old_;
  QStringList owned_;
};

const std::string kCinnamonPicture = "org.cinnamon.desktop.background picture-uri";
const std::string kCinnamonStyle = "org.cinnamon.desktop.background picture-options";
const std::string kTakesTurns = "org.cinnamon.desktop.background.slideshow slideshow-enabled";
const std::string kPicture = "org.gnome.desktop.background picture-uri";
const std::string kDarkPicture = "org.gnome.desktop.background picture-uri-dark";
const std::string kStyle = "org.gnome.desktop.background picture-options";
const std::string kOld = "'file:///old.png'";

TEST_F(GSettingsTest, WhatShowsThePictureChangesAndAllOfItGoesBack) {
  const struct {
    Shell shell;
    Settings before;
    Settings changed;
  } rows[] = {
      {kCinnamonRuns, {}, {{kCinnamonPicture, uri}}},
      {kCinnamonWithIcons, {{kCinnamonPicture, kOld}}, {{kCinnamonPicture, uri}}},
      {kCinnamonRuns,
       {{kCinnamonStyle, "'none'"}},
       {{kCinnamonPicture, uri}, {kCinnamonStyle, "'zoom'"}}},
      {kGnomeRuns, {}, {{kPicture, uri}, {kDarkPicture, uri}}},
      {kGnomeRuns,
       {{kPicture, "''"}, {kDarkPicture, kOld}, {kStyle, "'none'"}},
       {{kPicture, uri}, {kDarkPicture, uri}, {kStyle, "'zoom'"}}},
      {kBudgieRuns, {}, {{kPicture, uri}}},
      {kFlashbackRuns, {}, {{kPicture, uri}}},
  };
  for (const auto& [shell, before, changed] : rows) {
    SCOPED_TRACE(shell.busNames.back() + testing::PrintToString(before));
    run(shell, before);
    Settings wanted = before;
    for (const auto& [key, value] : changed) wanted[key] = value;
    EXPECT_EQ(swap(), "");
    EXPECT_EQ(settings(), wanted);
    EXPECT_EQ(putBack(), "");
    EXPECT_EQ(settings(), before);
  }
}

TEST_F(GSettingsTest, WhatTheUserLaysOutAnewMeanwhileStays) {
  run(kCinnamonRuns, {{kCinnamonPicture, kOld}, {kCinnamonStyle, "'none'"}});
  EXPECT_EQ(swap(), "");
  change({{kCinnamonPicture, uri}, {kCinnamonStyle, "'scaled'"}});
  EXPECT_EQ(putBack(), "");
  EXPECT_EQ(settings(), (Settings{{kCinnamonPicture, kOld}, {kCinnamonStyle, "'scaled'"}}));
}

// Whoever changes the picture while it runs ends it.
TEST_F(GSettingsTest, SlideShowIsEndedBeforeThePictureComesAndBegunAfterItHasGone) {
  const Settings before{{kCinnamonPicture, kOld}, {kTakesTurns, "true"}};
  run(kCinnamonRuns, before);
  EXPECT_THAT(pictures.path("one").value_or(""), Not(HasSubstr("old.png"))) << "it takes turns";
  QCoreApplication::processEvents();
  std::vector<std::string> keys;
  watch(keys);
  EXPECT_EQ(swap(), "");
  EXPECT_TRUE(soon([&] { return keys.size() == 2; }));
  EXPECT_EQ(putBack(), "");
  EXPECT_TRUE(soon([&] { return keys.size() == 4; }));
  EXPECT_THAT(keys,
              ElementsAre("slideshow-enabled", "picture-uri", "picture-uri", "slideshow-enabled"));
  EXPECT_EQ(settings(), before);
}

/// A list of pictures in two shapes, for the day and for the night.
QString timetable() {
  const auto picture = [](const char* tag, const char* name) {
    return QStringLiteral(
               "<%1>\n<size width=\"1920\" height=\"1080\">/%2-wide.png</size>\n"
               "<size width=\"800\" height=\"600\">/%2.png</size></%1>")
        .arg(QLatin1String(tag), QLatin1String(name));
  };
  QString path = folder().filePath("day.xml");
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(QStringLiteral("<background><starttime><year>2020</year><month>3</month><day>1</day>"
                            "<hour>6</hour><minute>0</minute><second>0</second></starttime>"
                            "<static><duration>36000.0</duration>%1</static>"
                            "<transition type=\"overlay\"><duration>7200</duration>%2%3"
                            "</transition><static><duration>43200</duration><file>/night.svg"
                            "</file></static></background>")
                 .arg(picture("file", "day"), picture("from", "day"), picture("to", "dusk"))
                 .toUtf8());
  return path;
}

QString drawing() {
  QFile file(folder().filePath("drawn.svg"));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
  return file.fileName();
}

TEST_F(GSettingsTest, WhatIsToldIsWhatTheShellDraws) {
  const QString light = saved("light.png");
  const QString night = saved("dark.png");
  const auto quoted = [](const QString& file) { return "'file://" + file.toStdString() + "'"; };
  const std::string primary = "'#102030'";
  const Settings cinnamon{{kCinnamonPicture, "'file:///old%20one.png'"},
                          {kCinnamonStyle, "'spanned'"},
                          {"org.cinnamon.desktop.background primary-color", primary}};
  const Settings gnome{{kPicture, quoted(light)},
                       {kDarkPicture, quoted(night)},
                       {kStyle, "'spanned'"},
                       {"org.gnome.desktop.background primary-color", primary}};
  const auto showing = [&](const QString& file) {
    Settings shown = gnome;
    shown[kPicture] = quoted(file);
    return shown;
  };
  Settings dark = gnome;
  dark["org.gnome.desktop.interface color-scheme"] = "'prefer-dark'";
  Settings unread = gnome;
  unread[kPicture] = "'file:///new.jxl'";
  // A drawing, and a format that only covers read.
  const QString drawn = drawing();
  const QString bits = saved("bits.xbm");
  Settings takingTurns = gnome;
  takingTurns[kPicture] = quoted(timetable());
  Settings coloured = gnome;
  coloured[kStyle] = "'none'";
  const QColor colour(0x10, 0x20, 0x30);
  constexpr BackdropStyle kStretched = BackdropStyle::Stretched;
  const struct {
    Shell shell;
    Settings settings;
    Backdrop backdrop;
  } rows[] = {
      {kCinnamonRuns,
       cinnamon,
       {"/old one.png", BackdropStyle::Fitted, true, BackdropShading::Solid, colour}},
      {kGnomeRuns, gnome, {light, kStretched, true}},
      {kGnomeRuns, dark, {night, kStretched, true}},
      {kGnomeRuns, showing(drawn), {drawn, kStretched, true}},
      {kGnomeRuns, showing(bits), {bits, kStretched, true}},
      {kBudgieRuns, dark, {light, kStretched, true}},
      {kBudgieRuns, takingTurns, {}},
      {kBudgieRuns, coloured, {}},
      {kGnomeRuns, coloured, {"", BackdropStyle::None, false, BackdropShading::Solid, colour}},
      {kGnomeRuns, unread, {"/new.jxl", kStretched, true, BackdropShading::Solid, colour}},
  };
  for (const auto& [shell, settings, backdrop] : rows) {
    run(shell, settings);
    const auto told = pictures.backdrop(facts.monitors().front());
    ASSERT_TRUE(told.has_value());
    EXPECT_EQ(told->file, backdrop.file);
    EXPECT_EQ(told->style, backdrop.style);
    EXPECT_EQ(told->spansMonitors, backdrop.spansMonitors);
    EXPECT_EQ(told->primary, backdrop.primary) << told->file.toStdString();
  }
}

TEST_F(GSettingsTest, OfPicturesThatTakeTurnsTheOneOfTheHourAndTheShapeIsTold) {
  const QString table = timetable();
  const std::tuple<int, QSize, const char*> rows[] = {
      {6, {1280, 720}, "/day-wide.png"},  {15, {1024, 768}, "/day.png"},
      {16, {1280, 720}, "/day-wide.png"}, {17, {1280, 720}, "/dusk-wide.png"},
      {23, {1024, 768}, "/night.svg"},    {5, {1280, 720}, "/night.svg"},
  };
  for (const auto& [hour, size, picture] : rows) {
    const QDateTime time(QDate(2026, 5, 4), QTime(hour, 30));
    EXPECT_EQ(pictureAt(table, time, size), picture) << hour;
  }
  EXPECT_EQ(pictureAt(folder().filePath("absent.xml"), {}, {80, 60}), "");
  const QString cut = folder().filePath("cut.xml");
  ASSERT_TRUE(QFile::copy(table, cut) && QFile::resize(cut, QFileInfo(cut).size() - 20));
  EXPECT_EQ(pictureAt(cut, QDateTime::currentDateTime(), {80, 60}), "");
  run(kGnomeRuns, {{kPicture, "'" + table.toStdString() + "'"}});
  EXPECT_THAT(pictures.path("one").value_or(""), Not(HasSubstr("day"))) << "it takes turns";
  const auto told = pictures.backdrop(facts.monitors().front());
  ASSERT_TRUE(told.has_value());
  EXPECT_NE(told->file, table);
}

}  // namespace
}  // namespace linux_desktop
