#include "desktop/linux/ui/QtDialogs.h"

#include <QFile>
#include <QFileDialog>
#include <QTemporaryDir>

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
    for (const char* name : {"HILL.GIF", "Sea.Png", "notes.txt"})
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
  }
  static QFileDialog* dialog() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* found = qobject_cast<QFileDialog*>(widget);
      if (found != nullptr && found->isVisible()) return found;
    }
    return nullptr;
  }
  static void type(const QString& name) {
    QTest::keyClicks(dialog()->focusWidget(), name);
    QTest::keyClick(dialog()->focusWidget(), Qt::Key_Return);
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
  EXPECT_EQ(dialog()->nameFilters(), QStringList("Suitable files (*.png *.PNG *.gif *.GIF)"));
  EXPECT_EQ(dialog()->directory(), QDir(picture("")));
}

TEST_F(QtOpenPanelTest, AnswersOnceWithTheWholePathOfAFileOfTheTypes) {
  for (const char* name : {"HILL.GIF", "Sea.Png", "notes.txt"}) {
    ask();
    type(QLatin1String(name));
    settle();
    EXPECT_EQ(dialog(), nullptr) << name;
  }
  ask();
  type(QStringLiteral("more"));
  QTest::keyClick(dialog(), Qt::Key_Escape);
  const auto path = [this](const char* name) { return picture(name).toStdString(); };
  EXPECT_EQ(answers, (std::vector{path("HILL.GIF"), path("Sea.Png"), std::string("nothing"),
                                  std::string("nothing")}));
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
