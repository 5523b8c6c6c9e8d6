// What holds for the pictures of every desktop, over one that lives in memory.

#include <gmock/gmock.h>

#include <QDBusConnection>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <QThreadPool>
#include <algorithm>
#include <random>
#include <utility>

#include "desktop/linux/wallpaper/DesktopFacts.h"
#include "desktop/linux/wallpaper/WallpaperPictures.h"
#include "desktop/wallpaper/PrivateBus.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;
using testing::HasSubstr;

class Desktop final : public WallpaperAdapter {
 public:
  QString file = QStringLiteral("/old.png");

  std::optional<Backdrop> backdrop(const Monitor&) override {
    return Backdrop{.file = file, .style = BackdropStyle::Zoomed};
  }
  std::optional<WallpaperState> state(const Monitor&) override {
    return WallpaperState{{{"file", file.toStdString()}}, file};
  }
  std::optional<Dictionary> options(const Monitor&) override { return Dictionary(); }
  std::optional<std::string> show(const Monitor&, const QString& wanted,
                                  const Dictionary&) override {
    file = wanted;
    return std::nullopt;
  }
  std::optional<std::string> restore(const Monitor&, const Dictionary& kept) override {
    file = QString::fromStdString(kept.at("file").as<std::string>().value());
    return std::nullopt;
  }
  void setChanged(std::function<void()>) override {}
};

std::string complaints;

class WallpaperPicturesTest : public PrivateBusTest {
 protected:
  WallpaperPicturesTest() : PrivateBusTest("") {
    facts.setBareDesktop(desktop);
    complaints.clear();
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
      complaints += text.toStdString();
    });
  }
  ~WallpaperPicturesTest() override { qInstallMessageHandler(nullptr); }

  [[nodiscard]] std::string path(const char* name) const {
    return folder_.filePath(QLatin1String(name)).toStdString();
  }
  [[nodiscard]] std::string save(const char* name) const {
    QImage noise(90, 90, QImage::Format_RGB32);
    std::mt19937 random;
    std::generate_n(reinterpret_cast<std::uint32_t*>(noise.bits()), 90 * 90, random);
    EXPECT_TRUE(noise.save(QString::fromStdString(path(name))));
    return path(name);
  }
  [[nodiscard]] std::string cutOff(const char* name) const {
    const QString file = QString::fromStdString(save(name));
    EXPECT_TRUE(QFile::resize(file, QFileInfo(file).size() * 2 / 3));
    return path(name);
  }
  /// Nothing tells its size but the header.
  [[nodiscard]] std::string saidToBeHuge(const char* name) const {
    QFile file(QString::fromStdString(save(name)));
    EXPECT_TRUE(file.open(QIODevice::ReadWrite));
    const qint64 frame = file.readAll().indexOf("\xff\xc0");
    EXPECT_TRUE(frame > 0 && file.seek(frame + 5) && file.write("\x36\xb0\x4e\x20") == 4);
    return path(name);
  }
  [[nodiscard]] std::string write(const char* name, const char* text) const {
    QFile file(QString::fromStdString(path(name)));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) > 0);
    return path(name);
  }
  /// The reason of a refusal.
  [[nodiscard]] std::string set(const std::string& file) {
    return pictures.set(file, "one", pictures.options("one").value_or(Dictionary())).value_or("");
  }

 private:
  QTemporaryDir folder_;

 protected:
  const std::shared_ptr<Desktop> desktop = std::make_shared<Desktop>();
  DesktopFacts facts{[] { return std::vector{Monitor{QStringLiteral("one"), {0, 0, 60, 40}}}; }};
  WallpaperPictures pictures{facts};
};

TEST_F(WallpaperPicturesTest, WhatCannotBeShownIsRefusedAndNothingChanges) {
  const std::pair<std::string, const char*> rows[] = {
      {path("missing.png"), "does not exist"},
      {write("text.png", "no picture"), "is not a picture"},
      {write("layers.png", "gimp xcf file"), "takes a plugin of Qt's"},
      {write("huge.ppm", "P6\n20000 14000\n255\n."), "too large"},
      {saidToBeHuge("huge.jpg"), "too large"},
      {cutOff("cut.png"), "is not a whole picture"},
      {path(""), "is not a file"},
      {"relative.png", "not a whole path"},
      {"/dev/null/desktop-picture/stale", "does not exist"},
  };
  WallpaperPictures::waitForPictures(3000);
  for (const auto& [file, reason] : rows) EXPECT_THAT(set(file), HasSubstr(reason)) << file;
  EXPECT_THAT(pictures.set(save("good.png"), "two", {}).value_or(""), HasSubstr("no screen two"));
  EXPECT_EQ(desktop->file, "/old.png");
}

TEST_F(WallpaperPicturesTest, CoverWithoutThePictureSaysWhyOnce) {
  WallpaperPictures::waitForPictures(3000);
  const auto draw = [&](const std::string& file) {
    desktop->file = QString::fromStdString(file);
    const Monitor monitor = facts.monitors().front();
    EXPECT_TRUE(pictures.render(pictures.backdrop(monitor).value(), monitor).has_value());
    return std::exchange(complaints, {});
  };
  EXPECT_EQ(draw(save("good.png")), "");
  const std::string layers = write("layers.png", "gimp xcf file");
  EXPECT_THAT(draw(layers), HasSubstr("layers.png takes a plugin of Qt's that is not here"));
  EXPECT_EQ(draw(layers), "");
  EXPECT_THAT(draw(cutOff("cut.png")), HasSubstr("cut.png is not a whole picture"));
}

TEST_F(WallpaperPicturesTest, PictureThatTakesLongIsShownOnceItIsReadAndABrokenOneNever) {
  const std::string chosen = save("chosen.png");
  WallpaperPictures::waitForPictures(0);
  const std::string old = pictures.path("one").value();
  EXPECT_EQ(set(chosen), "");
  EXPECT_EQ(set(old), "");
  QThreadPool::globalInstance()->waitForDone();
  QCoreApplication::processEvents();
  EXPECT_EQ(desktop->file, "/old.png") << "the last wish counts";
  const std::string answer = set(cutOff("cut.png"));
  EXPECT_TRUE(soon([&] {
    return (answer + complaints).find("cut.png is not a whole picture.") != std::string::npos;
  }));
  EXPECT_EQ(desktop->file, "/old.png");

  int changes = 0;
  pictures.setChanged([&] { ++changes; });
  EXPECT_EQ(set(chosen), "");
  EXPECT_TRUE(soon([&] { return pictures.path("one") == chosen; }));
  EXPECT_TRUE(soon([&] { return changes == 1; }));
  const Monitor monitor = facts.monitors().front();
  const Backdrop shown = pictures.backdrop(monitor).value();
  EXPECT_TRUE(soon([&] { return pictures.render(shown, monitor).has_value(); }));
}

TEST_F(WallpaperPicturesTest, NothingIsSetUnderAShellThatPaintsOverIt) {
  WallpaperPictures::waitForPictures(3000);
  EXPECT_EQ(set(save("good.png")), "");
  QDBusConnection bus = QDBusConnection::sessionBus();
  ASSERT_TRUE(bus.registerService(QStringLiteral("org.enlightenment.wm.service")));
  QCoreApplication::processEvents();  // who runs is looked for once a turn
  EXPECT_THAT(set(save("other.png")), HasSubstr("Nobody is known here"));
  bus.unregisterService(QStringLiteral("org.enlightenment.wm.service"));
}

}  // namespace
}  // namespace linux_desktop
