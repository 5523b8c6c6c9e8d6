#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include "desktop/linux/wallpaper/PlasmaPicture.h"

namespace linux_desktop {
namespace {

constexpr QSize kScreen(1280, 720);

/// A system with one theme, whose wallpaper has a light and a dark side.
class PlasmaPicture : public testing::Test {
 protected:
  PlasmaPicture() {
    for (const char* name :
         {"images/1024x768.png", "images/1366x768.png", "images/5120x2880.png",
          "images/720x1440.png", "images/notes.txt", "images_dark/1920x1080.png"})
      put(QStringLiteral("wallpapers/Hills/contents/") + QLatin1String(name));
    put(QStringLiteral("plasma/look-and-feel/org.test.theme/contents/defaults"),
        "[kdeglobals][General]\nColorScheme=Some\n\n[Wallpaper]\nImage=Hills\n");
    qputenv("XDG_DATA_DIRS", QFile::encodeName(folder_.path()));
  }
  ~PlasmaPicture() override { qputenv("XDG_DATA_DIRS", before_); }

  [[nodiscard]] QString path(const QString& name) const { return folder_.filePath(name); }
  /// From the folder of the wallpaper's pictures on.
  [[nodiscard]] QString shown(const QString& image, const QSize& screen,
                              bool isDark = false) const {
    const QString folder = path(QStringLiteral("wallpapers/Hills/contents/"));
    const QString file = plasmaPicture(image, screen, {QStringLiteral("org.test.theme"), isDark});
    return file.startsWith(folder) ? file.mid(folder.size()) : file;
  }

 private:
  void put(const QString& name, const QByteArray& content = "x") const {
    const QFileInfo place(path(name));
    QDir().mkpath(place.path());
    QFile file(place.filePath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
  }

  QTemporaryDir folder_;
  QByteArray before_ = qgetenv("XDG_DATA_DIRS");
};

TEST_F(PlasmaPicture, ScreenThatWasToldNothingShowsTheThemes) {
  EXPECT_EQ(shown({}, kScreen), "images/1366x768.png");
  EXPECT_EQ(shown({}, kScreen, true), "images_dark/1920x1080.png");
  EXPECT_EQ(plasmaPicture({}, kScreen, {QStringLiteral("org.test.absent"), false}), QString());
}

TEST_F(PlasmaPicture, FolderGivesTheSizeNearestInProportionsThenInWidth) {
  const QString folder = path(QStringLiteral("wallpapers/Hills"));
  for (const QString& image :
       {QStringLiteral("Hills"), folder, QUrl::fromLocalFile(folder + QLatin1Char('/')).toString()})
    EXPECT_EQ(shown(image, kScreen), "images/1366x768.png") << image.toStdString();
  EXPECT_EQ(shown(folder, {3840, 2160}), "images/5120x2880.png");
  EXPECT_EQ(shown(folder, {800, 600}), "images/1024x768.png");
  EXPECT_EQ(shown(folder, {1080, 1920}), "images/720x1440.png");
}

TEST_F(PlasmaPicture, FileIsTakenAsItIsAndAbsentOneIsNone) {
  const QString file = path(QStringLiteral("wallpapers/Hills/contents/images/notes.txt"));
  EXPECT_EQ(plasmaPicture(QUrl::fromLocalFile(file).toString(), kScreen, {}), file);
  EXPECT_EQ(shown(path(QStringLiteral("gone.png")), kScreen), QString());
  EXPECT_EQ(shown(QStringLiteral("Absent"), kScreen), QString());
  EXPECT_EQ(shown(path(QStringLiteral("plasma")), kScreen), QString());
}

}  // namespace
}  // namespace linux_desktop
