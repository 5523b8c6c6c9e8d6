#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <QBuffer>
#include <QDateTime>
#include <QTemporaryDir>
#include <string>

#include "desktop/linux/wallpaper/BackdropRenderer.h"
#include "desktop/linux/wallpaper/PcManFmRestart.h"
#include "desktop/linux/wallpaper/PictureReader.h"

namespace linux_desktop {
namespace {

class BackdropRendererTest : public testing::Test {
 protected:
  QString save(const QImage& image, const char* name) const {
    QString path = folder_.filePath(QLatin1String(name));
    EXPECT_TRUE(image.save(path));
    return path;
  }
  QTemporaryDir folder_;
  const Monitor right_{QStringLiteral("right"), {60, 0, 50, 30}};
  const BackdropLayout layout_{.desktop = {0, 0, 110, 40}};
};

// Beside this, styles, colours and tiles are compared with what the desktops draw.
TEST_F(BackdropRendererTest, ShellsBeginATileInTheMiddleAndOnesOfTheMonitorsSizeInItsMeasure) {
  QImage tile(20, 20, QImage::Format_RGB32);
  tile.fill(Qt::blue);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 10; ++x) tile.setPixelColor(x, y, Qt::red);
  }
  const Backdrop backdrop{.file = save(tile, "halves.png"), .style = BackdropStyle::Tiled};
  BackdropLayout layout = layout_;
  layout.manner.centersTiles = true;
  EXPECT_EQ(renderBackdrop(backdrop, right_, layout).pixelColor(14, 5), QColor(Qt::blue));
  EXPECT_EQ(renderBackdrop(backdrop, right_, layout).pixelColor(15, 5), QColor(Qt::red));
  layout.manner.tilesFromDesktopOrigin = layout.manner.stretchesTiles = true;
  Monitor monitor = right_;
  monitor.points.moveLeft(70);
  const QImage image = renderBackdrop(backdrop, monitor, layout);
  // At its own 20 pixels one begins 15 into the monitor; of 50 pixels therefore at 37.
  for (const auto& [x, colour] : {std::pair(5, Qt::red), {25, Qt::blue}, {45, Qt::red}})
    EXPECT_EQ(image.pixelColor(x, 5), QColor(colour)) << x;
}

// No shell that mutter draws for is among those whose pixels the tests compare.
TEST(BackdropGeometry, MutterRoundsAsItPaints) {
  const QRect area(1280, 10, 1024, 600);
  const struct {
    QSize picture;
    BackdropStyle style;
    QRect place;
  } rows[] = {{{1600, 900}, BackdropStyle::Fitted, {1280, 22, 1024, 576}},
              {{999, 600}, BackdropStyle::Fitted, {1293, 10, 999, 600}},
              {{1600, 903}, BackdropStyle::Zoomed, {1261, 10, 1063, 600}}};
  for (const auto& row : rows)
    EXPECT_EQ(placedPicture(row.picture, area, row.style, SizeRounding::AsMutter), row.place);
}

TEST_F(BackdropRendererTest, ByGlAPixelIsBetweenFourOfThePictureOrOfItsHalf) {
  const Monitor monitor{QStringLiteral("small"), {0, 0, 12, 12}};
  BackdropLayout layout{.desktop = monitor.pixels()};
  layout.manner.scalesByGl = true;
  // The first pixel's middle is a sixth or a third of the way from a black column to a white one.
  for (const auto& [width, grey] : {std::pair(16, 255 / 6), {20, 255 / 3}, {32, 255 / 2}}) {
    QImage columns(width, width, QImage::Format_RGB32);
    columns.fill(Qt::white);
    for (int x = 0; x < width; x += 2) {
      for (int y = 0; y < width; ++y) columns.setPixelColor(x, y, Qt::black);
    }
    const Backdrop backdrop{.file = save(columns, (std::to_string(width) + ".png").c_str()),
                            .style = BackdropStyle::Stretched};
    EXPECT_NEAR(qRed(renderBackdrop(backdrop, monitor, layout).pixel(0, 6)), grey, 3) << width;
  }
}

TEST_F(BackdropRendererTest, GrotesqueProportionsCostNoMemory) {
  QImage thread(2, 20'000, QImage::Format_RGB32);
  thread.fill(Qt::green);
  const Monitor large{QStringLiteral("large"), {0, 0, 3840, 2160}};
  for (const auto style : {BackdropStyle::Zoomed, BackdropStyle::Fitted}) {
    const Backdrop backdrop{.file = save(thread, "thread.png"), .style = style};
    const QImage image = renderBackdrop(backdrop, large, {.desktop = large.pixels()});
    EXPECT_EQ(image.pixelColor(1919, 1080), QColor(Qt::green)) << "one pixel at least";
  }
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

TEST_F(PictureReaderTest, WhatIsNoFileIsNotWaitedFor) {
  const QByteArray pipe = QFile::encodeName(folder_.filePath(QStringLiteral("pipe.png")));
  ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
  EXPECT_TRUE(readPicture({QFile::decodeName(pipe), true, {}}).image.isNull());
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
