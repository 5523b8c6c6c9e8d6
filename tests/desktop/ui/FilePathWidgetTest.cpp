#include "desktop/linux/ui/ContentWidgets.h"

#include <QFile>
#include <QTemporaryDir>
#include <QThreadPool>
#include <algorithm>
#include <vector>

#include "desktop/ui/TitledTest.h"

namespace linux_desktop {
namespace {

using ui_test::TitledTest;

class FilePathWidgetTest : public TitledTest {
 protected:
  FilePathWidgetTest() { content->addSubview(path); }

  [[nodiscard]] QString file(const char* name) const { return folder.filePath(name); }
  [[nodiscard]] QString picture(const char* name, QSize size) const {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    EXPECT_TRUE(image.save(file(name)));
    return file(name);
  }
  [[nodiscard]] QString bytes(const char* name, const QByteArray& written) const {
    QFile created(file(name));
    EXPECT_TRUE(created.open(QIODevice::WriteOnly) && created.write(written) == written.size());
    return file(name);
  }
  void show(const QString& text) {
    path->setStringValue(text.toStdString());
    if (shown() == nullptr) TitledTest::show();
    window->displayIfNeeded();
  }
  static FilePathWidget& widget(const platform::NSView& view) {
    return widgetOf<FilePathWidget>(view);
  }

  QTemporaryDir folder;
  std::shared_ptr<platform::NSTextField> path = ui_test::make<platform::NSTextField>(
      {{"content", "filePath"}, {"accessibilityLabel", "Wallpaper"}});
};

TEST_F(FilePathWidgetTest, LongPathIsElidedInTheMiddleAndWholeElsewhere) {
  const QString whole = "/home/someone/" + QString("a long way/").repeated(12) + "My Beach.heic";
  show(QStringLiteral("/a.png"));
  const QSize before = shown()->size();
  EXPECT_EQ(widget(*path).shownText(), QStringLiteral("/a.png"));
  show(whole);
  settle();
  EXPECT_EQ(shown()->size(), before);
  const QString text = widget(*path).shownText();
  EXPECT_LT(text.size(), whole.size());
  EXPECT_TRUE(text.startsWith(QLatin1String("/home/")) && text.endsWith(QLatin1String(".heic")));
  EXPECT_EQ(widget(*path).toolTip(), whole);
  EXPECT_EQ(readerOf(*path).role(), QAccessible::StaticText);
  EXPECT_EQ(readerOf(*path).text(QAccessible::Name), "Wallpaper: " + whole);
  show(QStringLiteral("Please select a Wallpaper"));
  EXPECT_EQ(widget(*path).shownText(), QStringLiteral("Please select a Wallpaper"));
  EXPECT_TRUE(widget(*path).toolTip().isEmpty());
}

TEST_F(FilePathWidgetTest, PathBeginsWithItsSlashFromRightToLeft) {
  show(QStringLiteral("/aaaa"));
  QApplication::setLayoutDirection(Qt::RightToLeft);
  settle();
  const QImage image = widget(*path).grab().toImage();
  QApplication::setLayoutDirection(Qt::LeftToRight);
  // Beside the picture, row by row from the top. The slash is the tallest of these letters.
  const int end = image.width() - image.height() * 8 / 5 - 1;
  std::vector<int> ink;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < end; ++x)
      if (qGray(image.pixel(x, y)) < 128) ink.push_back(x);
  ASSERT_FALSE(ink.empty());
  EXPECT_LT(ink.front(), (std::ranges::min(ink) + std::ranges::max(ink)) / 2);
}

TEST_F(FilePathWidgetTest, PictureIsShownSmallAndGoesWithItsPath) {
  show(picture("wide.png", {3000, 1500}));
  EXPECT_TRUE(until([this] { return widget(*path).thumbnail().size() == QSize(128, 64); }));
  EXPECT_EQ(widget(*path).thumbnail().pixelColor(64, 32), QColor(Qt::darkCyan));
  show(picture("small.png", {16, 16}));
  EXPECT_TRUE(until([this] { return widget(*path).thumbnail().size() == QSize(16, 16); }));
  show(QStringLiteral("/nowhere/at all.png"));
  EXPECT_TRUE(widget(*path).thumbnail().isNull());
}

TEST_F(FilePathWidgetTest, PictureOfFewColoursKeepsThem) {
  QImage image(800, 600, QImage::Format_Mono);
  image.setColorTable({qRgb(128, 128, 0), qRgb(128, 128, 0)});
  image.fill(0);
  ASSERT_TRUE(image.save(file("olive.png")));
  const QImage small = readSmallPicture(file("olive.png"), {128, 80});
  EXPECT_EQ(small.size(), QSize(106, 80));
  EXPECT_EQ(small.pixelColor(50, 40), QColor(128, 128, 0));
}

TEST_F(FilePathWidgetTest, WhatIsNoReadablePictureHasNone) {
  QFile whole(picture("whole.png", {400, 400}));
  ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
  // The header of a picture of 65535 x 65535 with nothing behind it.
  const QByteArray huge =
      QByteArray::fromHex("424d00000000000000003600000028000000000ffff0000ffff") +
      QByteArray(64, '\0');
  const QString paths[] = {file("missing.png"),
                           folder.path(),
                           bytes("empty.jpg", {}),
                           bytes("text.png", "not a picture"),
                           bytes("cut.png", whole.read(60)),
                           bytes("huge.bmp", huge),
                           QStringLiteral("/dev/zero")};
  for (const QString& none : paths) {
    EXPECT_TRUE(readSmallPicture(none, {128, 80}).isNull()) << none.toStdString();
  }
}

TEST_F(FilePathWidgetTest, PictureThatComesAfterItsWindowIsGoneHurtsNobody) {
  show(picture("wide.png", {3000, 1500}));
  window->orderOut(nullptr);
  window.reset();
  QThreadPool::globalInstance()->waitForDone();
  settle();
  window = std::make_shared<platform::NSWindow>(platform::NSWindowStyle::Titled);
}

}  // namespace
}  // namespace linux_desktop
