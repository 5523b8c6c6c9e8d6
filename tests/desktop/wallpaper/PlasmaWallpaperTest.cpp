#include <gmock/gmock.h>

#include <QImage>
#include <QTemporaryDir>
#include <fstream>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/wallpaper/DesktopFacts.h"
#include "desktop/linux/wallpaper/WallpaperPictures.h"
#include "desktop/wallpaper/PrivateBus.h"

namespace linux_desktop {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// Two screens, the second one with two pixels a point each way.
const Monitor kFirst{QStringLiteral("VNC-0"), {0, 0, 1280, 720}};
const Monitor kSecond{QStringLiteral("VNC-1"), {1280, 0, 512, 300}, 2};

class PlasmaWallpaperTest : public PrivateBusTest {
 protected:
  PlasmaWallpaperTest() : PrivateBusTest("KDE") {
    qputenv("XDG_CONFIG_HOME", folder_.path().toLocal8Bit());
    BusPeer::limitOperationsTo(3000);  // tests run side by side
    WallpaperPictures::waitForPictures(3000);
  }

  void start(const std::string& slide = {}) {
    std::vector<std::string> argv{PLASMA_STAND_IN, picture("old.png")};
    if (!slide.empty()) argv.push_back(slide);
    shell.emplace(harness::Command{argv});
    ASSERT_TRUE(shell->waitForLine("^ready$")) << shell->errorOutput();
  }

  [[nodiscard]] std::string picture(const char* name) const {
    const QString path = folder_.filePath(QString::fromUtf8(name));
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    EXPECT_TRUE(image.save(path));
    return path.toStdString();
  }
  [[nodiscard]] std::string path(const Monitor& monitor) {
    return pictures.path(monitor.name.toStdString()).value_or("");
  }
  /// The reason of a refusal.
  std::string set(const Monitor& monitor, const std::string& file) {
    return pictures.set(file, monitor.name.toStdString(), {}).value_or("");
  }
  static void endTurn() { QCoreApplication::processEvents(); }
  /// What the next script that writes was given.
  [[nodiscard]] std::string written() { return shell->waitForLine("^\\{").value_or("nothing"); }
  /// How often it was asked.
  [[nodiscard]] std::size_t readings() const { return shell->lines("asked").size(); }
  /// As the user's own settings would, up to where the shell notes it in its file.
  void changeByAnother(const std::string& file) const {
    const std::string wanted = R"({"id":9,"plugin":"org.kde.image","image":"file://)" + file;
    EXPECT_TRUE(
        harness::runToEnd({{"dbus-send", "--session", "--print-reply", "--dest=org.kde.plasmashell",
                            "/PlasmaShell", "org.kde.PlasmaShell.evaluateScript",
                            "string:const wanted = " + wanted + "\"};"}})
            .succeeded());
  }
  void noteInFile() {
    std::ofstream(folder_.filePath("plasma-org.kde.plasma.desktop-appletsrc").toStdString())
        << ++notes_;
  }

 private:
  QTemporaryDir folder_;
  int notes_ = 0;

 protected:
  std::optional<harness::Process> shell;
  DesktopFacts facts{[] { return std::vector{kFirst, kSecond}; }};
  WallpaperPictures pictures{facts};
};

TEST_F(PlasmaWallpaperTest, EachScreenIsSetAndPutBackByItsPlace) {
  start();
  const std::string colour = path(kFirst);
  EXPECT_THAT(colour, StartsWith("/dev/null/"));
  EXPECT_EQ(pictures.backdrop(kFirst), (Backdrop{.file = {}, .primary = QColor(32, 160, 64)}));
  const std::string old = path(kSecond);
  EXPECT_THAT(old, EndsWith("/old.png"));
  EXPECT_EQ(pictures.backdrop(kSecond)->style, BackdropStyle::Fitted);

  const std::string chosen = picture("a \"b\" %20ä.png");
  EXPECT_EQ(set(kFirst, chosen), "");
  EXPECT_THAT(written(), HasSubstr(R"(/a%20%22b%22%20%2520%C3%A4.png","plugin":"org.kde.image")"));
  EXPECT_EQ(path(kSecond), old);
  EXPECT_EQ(set(kSecond, chosen), "");
  EXPECT_THAT(written(), StartsWith(R"({"id":9,)"));

  EXPECT_EQ(set(kFirst, colour), "");
  EXPECT_EQ(written(), R"({"id":7,"image":"","plugin":"org.kde.color"})");
  EXPECT_EQ(set(kSecond, old), "");
  EXPECT_EQ(written(), R"({"id":9,"image":"file://)" + old + R"(","plugin":"org.kde.image"})");
}

TEST_F(PlasmaWallpaperTest, SlideShowGoesOnFromTheSlideThatScriptsDoNotSee) {
  start(picture("slide.png"));
  const std::string show = path(kSecond);
  EXPECT_THAT(show, StartsWith("/dev/null/"));
  EXPECT_THAT(pictures.backdrop(kSecond)->file.toStdString(), EndsWith("/slide.png"));
  EXPECT_EQ(set(kSecond, picture("chosen.png")), "");
  EXPECT_THAT(written(), HasSubstr(R"(/chosen.png","plugin":"org.kde.image"})"));

  EXPECT_EQ(set(kSecond, show), "");
  const std::string back = written();
  EXPECT_THAT(back, HasSubstr(R"(/old.png","plugin":"org.kde.slideshow","slide":"file:///)"));
  EXPECT_THAT(back, EndsWith(R"(/slide.png"})"));
}

TEST_F(PlasmaWallpaperTest, OneReadingServesATurnAndNoLonger) {
  start();
  const std::string chosen = picture("chosen.png");
  EXPECT_THAT(path(kFirst), StartsWith("/dev/null/"));
  for (const Monitor& monitor : {kFirst, kSecond}) {
    EXPECT_EQ(set(monitor, chosen), "");
    EXPECT_EQ(path(monitor), chosen);
  }
  EXPECT_EQ(readings(), 1U);
  endTurn();
  EXPECT_EQ(path(kFirst), chosen);
  EXPECT_TRUE(soon([&] { return readings() == 2U; }));

  EXPECT_THAT(set(kFirst, picture("refused.png")), HasSubstr("does not take"));
  EXPECT_EQ(path(kFirst), chosen);
}

TEST_F(PlasmaWallpaperTest, ChangeByAnotherIsToldEvenIfItWasReadBefore) {
  start();
  ASSERT_NE(path(kSecond), "");
  int changes = 0;
  pictures.setChanged([&] { ++changes; });
  const auto isTold = [&](int wanted) { return soon([&] { return changes == wanted; }); };
  const std::string chosen = picture("chosen.png");
  endTurn();
  changeByAnother(chosen);
  EXPECT_EQ(path(kSecond), chosen);
  noteInFile();
  EXPECT_TRUE(isTold(1));

  EXPECT_EQ(set(kSecond, picture("ours.png")), "");
  EXPECT_TRUE(isTold(2)) << "our own";
  const std::size_t before = readings();
  noteInFile();
  EXPECT_TRUE(soon([&] { return readings() > before; }));
  EXPECT_EQ(changes, 2) << "which was told";
  changeByAnother(chosen);
  noteInFile();
  EXPECT_TRUE(isTold(3));
}

TEST_F(PlasmaWallpaperTest, FrozenShellIsWaitedForOnce) {
  start();
  ASSERT_NE(path(kFirst), "");
  shell->freeze();
  endTurn();
  EXPECT_EQ(path(kFirst), "");
  // They would take five minutes, were each to wait.
  const std::string chosen = picture("chosen.png");
  for (int order = 0; order < 100; ++order)
    ASSERT_THAT(set(kSecond, chosen), HasSubstr("does not answer"));
  shell->thaw();
  EXPECT_TRUE(soon([&] { return !path(kFirst).empty(); }));
}

}  // namespace
}  // namespace linux_desktop
