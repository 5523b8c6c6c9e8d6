#include "desktop/linux/ui/QtDialogs.h"

#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>

#include "desktop/linux/ui/PicturePreview.h"
#include "desktop/ui/TitledTest.h"
#include "platform/appkit/NSOpenPanel.h"

namespace linux_desktop {
namespace {

using ui_test::TitledTest;

class QtOpenPanelTest : public TitledTest {
 protected:
  QtOpenPanelTest() {
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    EXPECT_TRUE(QDir(home.path()).mkpath(QStringLiteral("Pictures/more")));
    for (const char* name : {"beach.gif", "HILL.GIF", "Sea.Png"}) {
      QImage image(300, 200, QImage::Format_RGB32);
      image.fill(Qt::darkGreen);
      // Qt writes no GIF; the content decides what a file is.
      EXPECT_TRUE(image.save(picture(name), "PNG"));
    }
    for (const char* name : {"notes.txt", "broken.png"})
      EXPECT_TRUE(QFile(picture(name)).open(QIODevice::WriteOnly));
    panel.setMessage("Please select an image");
    panel.setPrompt("Select");
    panel.setAllowedFileTypes({"png", "gif", "GIF"});
  }
  ~QtOpenPanelTest() override {
    qputenv("HOME", formerHome);
    qputenv("XDG_CONFIG_HOME", formerConfig);
  }

  [[nodiscard]] QString picture(const QString& name) const {
    return home.filePath("Pictures/" + name);
  }
  void ask() {
    peer = windows.showOpenPanel(panel, [this](const std::optional<std::string>& path) {
      answers.push_back(path.value_or("nothing"));
      peer.reset();
    });
    ASSERT_TRUE(until([] { return dialog() != nullptr && dialog()->isActiveWindow(); }));
    ASSERT_TRUE(until([] { return listed().contains(QLatin1String("Sea.Png")); }));
  }
  static QFileDialog* dialog() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* found = qobject_cast<QFileDialog*>(widget);
      if (found != nullptr && found->isVisible()) return found;
    }
    return nullptr;
  }
  static QStringList listed() {
    const auto* list = dialog()->findChild<QListView*>(QStringLiteral("listView"));
    QStringList names;
    for (int row = 0; row < list->model()->rowCount(list->rootIndex()); ++row)
      names << list->model()->index(row, 0, list->rootIndex()).data().toString();
    return names;
  }
  static void select(const QString& name) {
    auto* list = dialog()->findChild<QListView*>(QStringLiteral("listView"));
    const auto row = static_cast<int>(listed().indexOf(name));
    list->setCurrentIndex(list->model()->index(row, 0, list->rootIndex()));
  }
  static const PicturePreview* preview() {
    for (const auto* child : dialog()->findChildren<QWidget*>()) {
      if (const auto* found = dynamic_cast<const PicturePreview*>(child)) return found;
    }
    return nullptr;
  }
  static void type(const QString& name) {
    auto* line = dialog()->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    line->setText(name);
    QTest::keyClick(line, Qt::Key_Return);
  }

  QByteArray formerHome = qgetenv("HOME");
  QByteArray formerConfig = qgetenv("XDG_CONFIG_HOME");
  QTemporaryDir home;
  platform::NSOpenPanel panel;
  std::unique_ptr<platform::port::Windows::ModalPeer> peer;
  std::vector<std::string> answers;
};

TEST_F(QtOpenPanelTest, OffersFilesOfTheTypesInTheFolderOfPictures) {
  ask();
  EXPECT_EQ(dialog()->windowTitle(), QStringLiteral("Please select an image"));
  EXPECT_EQ(dialog()->labelText(QFileDialog::Accept), QStringLiteral("Select"));
  EXPECT_TRUE(until([] { return listed().size() == 5; }));
  const QStringList names = listed();
  for (const char* name : {"beach.gif", "HILL.GIF", "Sea.Png", "broken.png", "more"}) {
    EXPECT_TRUE(names.contains(QLatin1String(name))) << name;
  }
}

TEST_F(QtOpenPanelTest, AnswersOnceWithTheWholePathOfTheFile) {
  for (const char* name : {"HILL.GIF", "Sea.Png"}) {
    ask();
    type(QLatin1String(name));
    EXPECT_EQ(answers.back(), picture(name).toStdString());
    settle();
    EXPECT_EQ(dialog(), nullptr);
  }
  EXPECT_EQ(answers.size(), 2U);
}

TEST_F(QtOpenPanelTest, NeitherAFolderNorAnotherTypeCanBeChosen) {
  ask();
  type(QStringLiteral("notes.txt"));
  auto* refusal = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  ASSERT_NE(refusal, nullptr);
  QTest::keyClick(refusal, Qt::Key_Escape);
  settle();
  type(picture("more"));
  EXPECT_TRUE(until([this] { return dialog()->directory() == QDir(picture("more")); }));
  EXPECT_TRUE(answers.empty());
  QTest::keyClick(dialog(), Qt::Key_Escape);
  EXPECT_EQ(answers, std::vector<std::string>{"nothing"});
}

TEST_F(QtOpenPanelTest, PreviewShowsTheFileThatIsSelected) {
  ask();
  ASSERT_NE(preview(), nullptr);
  select(QStringLiteral("beach.gif"));
  EXPECT_TRUE(until([&] { return preview()->picture().size() == QSize(300, 200); }));
  EXPECT_EQ(preview()->accessibleDescription(), QStringLiteral("beach.gif"));
  select(QStringLiteral("broken.png"));
  EXPECT_TRUE(
      until([&] { return preview()->accessibleDescription() == QLatin1String("No preview"); }));
}

TEST_F(QtOpenPanelTest, WindowsWaitAndOneThatIsTakenAwayAnswersNothing) {
  show();
  ask();
  QTest::mouseClick(shown()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                    widgetOf(*button).geometry().center());
  EXPECT_EQ(keys->buttonPresses, 0);
  peer.reset();
  settle();
  EXPECT_EQ(dialog(), nullptr);
  EXPECT_TRUE(answers.empty());
  EXPECT_TRUE(until([this] { return window->isKeyWindow(); }));
}

}  // namespace
}  // namespace linux_desktop
