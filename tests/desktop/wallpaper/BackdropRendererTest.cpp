#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QBuffer>
#include <QDateTime>
#include <QTemporaryDir>

#include "desktop/linux/wallpaper/BackdropRenderer.h"
#include "desktop/linux/wallpaper/PcManFmRestart.h"
#include "desktop/linux/wallpaper/PictureReader.h"

namespace linux_desktop {
namespace {

TEST(BackdropGeometry, EachStyleHasItsPlace) {
  const QRect area(1280, 10, 1024, 600);
  struct Row {
    QSize picture;
    BackdropStyle style;
    SizeRounding rounding;
    QRect place;
  };
  const Row rows[] = {
      {{100, 101}, BackdropStyle::Centered, SizeRounding::Down, {1742, 259, 100, 101}},
      {{2000, 700}, BackdropStyle::Centered, SizeRounding::Down, {792, -40, 2000, 700}},
      {{1025, 601}, BackdropStyle::Centered, SizeRounding::Down, {1280, 10, 1025, 601}},
      {{7, 9}, BackdropStyle::Stretched, SizeRounding::Down, area},
      {{7, 9}, BackdropStyle::Tiled, SizeRounding::Down, {1280, 10, 7, 9}},
      {{417, 311}, BackdropStyle::Fitted, SizeRounding::Down, {1390, 10, 804, 600}},
      {{417, 311}, BackdropStyle::Fitted, SizeRounding::Up, {1389, 10, 805, 600}},
      {{1531, 977}, BackdropStyle::Zoomed, SizeRounding::Down, {1280, -16, 1024, 653}},
      {{1531, 977}, BackdropStyle::Zoomed, SizeRounding::Up, {1280, -17, 1024, 654}},
      {{9000, 1}, BackdropStyle::Fitted, SizeRounding::Down, {1280, 309, 1024, 1}},
      {{7, 9}, BackdropStyle::None, SizeRounding::Down, {}},
      {{}, BackdropStyle::Zoomed, SizeRounding::Down, {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(placedPicture(row.picture, area, row.style, row.rounding), row.place)
        << row.picture.width() << ' ' << static_cast<int>(row.style);
  }
}

class BackdropRendererTest : public testing::Test {
 protected:
  QString save(const QImage& image, const char* name) const {
    QString path = folder_.filePath(QLatin1String(name));
    EXPECT_TRUE(image.save(path));
    return path;
  }
  QTemporaryDir folder_;
  const Monitor left_{QStringLiteral("left"), {0, 0, 60, 40}};
  const Monitor right_{QStringLiteral("right"), {60, 0, 50, 30}};
  const BackdropLayout layout_{.desktop = {0, 0, 110, 40}};
};

TEST_F(BackdropRendererTest, UnreadablePictureLeavesTheColours) {
  Backdrop backdrop{.file = folder_.filePath(QStringLiteral("absent.png")),
                    .style = BackdropStyle::Zoomed,
                    .shading = BackdropShading::Horizontal,
                    .primary = Qt::black,
                    .secondary = Qt::white};
  const QImage image = renderBackdrop(backdrop, right_, layout_);
  EXPECT_EQ(image.size(), right_.pixels().size());
  EXPECT_LT(qRed(image.pixel(0, 15)), 6);
  EXPECT_GT(qRed(image.pixel(49, 15)), 249);
  backdrop.spansMonitors = true;
  EXPECT_NEAR(qRed(renderBackdrop(backdrop, right_, layout_).pixel(0, 0)), 139, 3);
}

TEST_F(BackdropRendererTest, TilesBeginWhereTheDesktopHasThem) {
  QImage tile(20, 20, QImage::Format_RGB32);
  tile.fill(Qt::white);
  tile.setPixelColor(0, 0, Qt::red);
  const Backdrop backdrop{.file = save(tile, "tile.png"), .style = BackdropStyle::Tiled};
  BackdropLayout layout = layout_;
  Monitor monitor = right_;
  monitor.points.moveLeft(70);
  EXPECT_EQ(renderBackdrop(backdrop, monitor, layout).pixelColor(0, 20), QColor(Qt::red));
  layout.manner.tilesFromDesktopOrigin = true;
  EXPECT_EQ(renderBackdrop(backdrop, monitor, layout).pixelColor(10, 20), QColor(Qt::red));
  layout = layout_;
  layout.manner.centersTiles = true;
  EXPECT_EQ(renderBackdrop(backdrop, monitor, layout).pixelColor(15, 5), QColor(Qt::red));
}

TEST_F(BackdropRendererTest, TilesAsLargeAsTheMonitorBeginInItsMeasure) {
  QImage tile(20, 20, QImage::Format_RGB32);
  tile.fill(Qt::blue);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 10; ++x) tile.setPixelColor(x, y, Qt::red);
  }
  const Backdrop backdrop{.file = save(tile, "halves.png"), .style = BackdropStyle::Tiled};
  BackdropLayout layout = layout_;
  layout.manner.tilesFromDesktopOrigin = true;
  layout.manner.centersTiles = layout.manner.stretchesTiles = true;
  Monitor monitor = right_;
  monitor.points.moveLeft(70);
  const QImage image = renderBackdrop(backdrop, monitor, layout);
  // At its own 20 pixels one begins 15 into the monitor; of 50 pixels therefore at 37.
  for (const auto& [x, colour] : {std::pair(5, Qt::red), {25, Qt::blue}, {45, Qt::red}})
    EXPECT_EQ(image.pixelColor(x, 5), QColor(colour)) << x;
}

TEST_F(BackdropRendererTest, SpannedPictureIsOneOverAllMonitors) {
  QImage halves(110, 40, QImage::Format_RGB32);
  halves.fill(Qt::red);
  for (int x = 60; x < 110; ++x) {
    for (int y = 0; y < 40; ++y) halves.setPixelColor(x, y, Qt::blue);
  }
  const Backdrop backdrop{
      .file = save(halves, "halves.png"), .style = BackdropStyle::Zoomed, .spansMonitors = true};
  EXPECT_EQ(renderBackdrop(backdrop, left_, layout_).pixelColor(59, 0), QColor(Qt::red));
  EXPECT_EQ(renderBackdrop(backdrop, right_, layout_).pixelColor(0, 29), QColor(Qt::blue));
}

TEST_F(BackdropRendererTest, GrotesqueProportionsCostNoMemory) {
  QImage thread(2, 20'000, QImage::Format_RGB32);
  thread.fill(Qt::green);
  const Monitor large{QStringLiteral("large"), {0, 0, 3840, 2160}};
  const Backdrop backdrop{.file = save(thread, "thread.png"), .style = BackdropStyle::Zoomed};
  const QImage image = renderBackdrop(backdrop, large, {.desktop = large.pixels()});
  EXPECT_EQ(image.pixelColor(1920, 1080), QColor(Qt::green));
}

TEST_F(BackdropRendererTest, DrawingThatDeclaresAnySizeCostsWhatIsSeenOfIt) {
  QFile drawing(folder_.filePath(QStringLiteral("drawing.svg")));
  ASSERT_TRUE(drawing.open(QIODevice::WriteOnly));
  drawing.write(R"(<svg xmlns="http://www.w3.org/2000/svg" width="20000" height="20000">
                   <rect width="20000" height="20000" fill="#ff0000"/></svg>)");
  drawing.close();
  const auto most = [] {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;  // kilobytes, ever
  };
  const auto before = most();
  for (const auto style : {BackdropStyle::Centered, BackdropStyle::Tiled, BackdropStyle::Zoomed}) {
    const Backdrop backdrop{.file = drawing.fileName(), .style = style};
    EXPECT_EQ(renderBackdrop(backdrop, right_, layout_).pixelColor(25, 15), QColor(Qt::red));
  }
  EXPECT_LT(most() - before, 100'000);
}

class PictureReaderTest : public BackdropRendererTest {};

TEST_F(PictureReaderTest, OneReadingServesAllUntilTheFileIsAnother) {
  const QString file = save(QImage(300, 200, QImage::Format_RGB32), "shared.png");
  const auto keyOf = [&](const QSize& shown) {
    return readPicture({file, true, shown}).image.cacheKey();
  };
  const qint64 first = keyOf({60, 40});
  EXPECT_EQ(keyOf({50, 30}), first);
  EXPECT_EQ(keyOf({}), first);
  EXPECT_EQ(decodingFault({file, true, {}}), std::nullopt);
  QFile again(file);
  ASSERT_TRUE(again.open(QIODevice::ReadWrite));
  ASSERT_TRUE(again.setFileTime(QDateTime::currentDateTime().addDays(1),
                                QFileDevice::FileModificationTime));
  const qint64 second = keyOf({60, 40});
  EXPECT_NE(second, first);
  EXPECT_TRUE(forgetPictures());
  EXPECT_NE(keyOf({60, 40}), second);
}

TEST_F(PictureReaderTest, LargePhotographIsReadNoLargerThanItIsShownAndUpright) {
  QImage photograph(6000, 4100, QImage::Format_Grayscale8);
  photograph.fill(Qt::white);
  QByteArray jpeg;
  QBuffer buffer(&jpeg);
  ASSERT_TRUE(buffer.open(QIODevice::WriteOnly) && photograph.save(&buffer, "JPEG"));
  // EXIF: to be turned by a quarter.
  jpeg.insert(2, QByteArray::fromHex("ffe10022457869660000"
                                     "49492a0008000000"
                                     "0100120103000100000006000000"
                                     "00000000"));
  QFile file(folder_.filePath(QStringLiteral("photograph.jpg")));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(jpeg) == jpeg.size());
  file.close();
  const DecodedPicture picture = readPicture({file.fileName(), true, {60, 40}});
  EXPECT_EQ(picture.size, QSize(4100, 6000));
  EXPECT_EQ(picture.image.size(), QSize(60, 87));
  EXPECT_EQ(readPicture({file.fileName(), false, {}}).image.size(), QSize(6000, 4100));
  EXPECT_TRUE(forgetPictures());
}

TEST(DesktopProcess, ProfileIsTheOneOfTheCommandLine) {
  EXPECT_EQ(profileIn({"pcmanfm", "--desktop"}), QLatin1String("default"));
  EXPECT_EQ(profileIn({"pcmanfm", "--desktop", "--profile", "LXDE"}), QLatin1String("LXDE"));
  EXPECT_EQ(profileIn({"pcmanfm-qt", "--profile=lxqt"}), QLatin1String("lxqt"));
  EXPECT_EQ(profileIn({"pcmanfm-qt", "-p"}), QLatin1String("default"));
  EXPECT_EQ(profileIn({}), QLatin1String("default"));
}

}  // namespace
}  // namespace linux_desktop
