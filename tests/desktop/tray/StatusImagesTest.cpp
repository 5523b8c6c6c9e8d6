#include "desktop/linux/tray/StatusImages.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <string>

#include "platform/appkit/NSImage.h"
#include "resources/Resources.h"

namespace {

using linux_desktop::StatusImages;

constexpr const char* kNames[] = {"logo-initial-small", "logo-active-small"};

class StatusImagesTest : public testing::Test {
 protected:
  StatusImagesTest() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_DATA_HOME", folder_.path().toUtf8());
    application_.emplace(argc_, argv_);
  }
  ~StatusImagesTest() override { qunsetenv("XDG_DATA_HOME"); }

  static platform::NSImage resource(const std::string& name) {
    const auto files = resources::files();
    const auto file = std::ranges::find(files, name + ".svg", &resources::File::name);
    return {name, file->bytes};
  }
  void install(const QString& icon) {
    const QDir icons(folder_.filePath("icons/hicolor/symbolic/apps"));
    ASSERT_TRUE(icons.mkpath("."));
    QFile file(icons.filePath(icon + ".svg"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  }

 private:
  QTemporaryDir folder_;
  int argc_ = 1;
  char name_[5] = "test";
  char* argv_[2] = {name_, nullptr};
  std::optional<QGuiApplication> application_;
};

/// How light the pixel is on a white panel: 0 to 255.
int lightness(const QImage& picture, int x, int y) {
  const QColor color = picture.pixelColor(x, y);
  return static_cast<int>(255 - color.alphaF() * static_cast<float>(255 - qGray(color.rgb())));
}

TEST_F(StatusImagesTest, TheScreensEdgesLieOnThePixelsOfThePanelsSizes) {
  constexpr int kDark = 105;
  constexpr int kLight = 200;
  for (const char* name : kNames) {
    StatusImages images;
    const platform::NSImage image = resource(name);
    const QIcon& icon = images.rendered(&image).icon;
    for (const int size : {16, 22, 24, 32}) {
      const QImage picture = icon.pixmap(size).toImage();
      ASSERT_EQ(picture.width(), size);
      const auto expectClear = [&](int x, int y) {
        const int found = lightness(picture, x, y);
        EXPECT_TRUE(found <= kDark || found >= kLight)
            << name << " at " << size << ": " << found << " at " << x << ", " << y;
      };
      for (int along = 0; along < size / 4; ++along) {
        expectClear(along, size / 3);
        expectClear(size - 1 - along, size / 3);
        expectClear(size / 4, along);
      }
    }
  }
}

TEST_F(StatusImagesTest, ANameIsToldOnlyWhereIconThemesHaveIt) {
  const platform::NSImage image = resource(kNames[0]);
  StatusImages without;
  EXPECT_EQ(without.rendered(&image).name, QString());
  const QString name = "org.calmdeck.Calmdeck-logo-initial-small-symbolic";
  install(name);
  StatusImages with;
  EXPECT_EQ(with.rendered(&image).name, name);
  EXPECT_EQ(with.rendered(nullptr).name, QString());
}

}  // namespace
