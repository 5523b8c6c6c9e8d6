#include "desktop/linux/ui/QtWindows.h"

#include <QLabel>
#include <QToolButton>

#include "desktop/linux/ui/Theme.h"
#include "desktop/ui/PanelTest.h"

namespace linux_desktop {
namespace {

using ui_test::PanelTest;
using namespace std::chrono_literals;

/// Counts the events of one kind in the whole process while it lives.
class EventCount final : public QObject {
 public:
  explicit EventCount(QEvent::Type type) : type_(type) { qApp->installEventFilter(this); }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == type_) ++count;
    return false;
  }
  int count = 0;

 private:
  QEvent::Type type_;
};

class QtWindowsTest : public PanelTest {
 protected:
  /// Whether the first switch is painted in several steps when it slides on, while `wait` waits. A
  /// busy machine leaves steps out, but not those of every slide.
  bool slidesOnInSteps(const std::function<void()>& wait) {
    constexpr int kFewest = 4;
    for (int slide = 0; slide < 20; ++slide) {
      first->setIsOn(false);
      EXPECT_TRUE(until([this] { return !first->isAnimating(loop.now()); }));
      const EventCount paints(QEvent::Paint);
      first->setIsOn(true);
      window->displayIfNeeded();
      wait();
      if (paints.count >= kFewest) return true;
    }
    return false;
  }
};

TEST_F(QtWindowsTest, PopoverStaysAtItsPanelWhenItsContentShrinks) {
  show();
  const QRect before = shown()->geometry();
  second->setHidden(true);
  EXPECT_TRUE(until([&] { return shown()->height() < before.height(); }));
  EXPECT_EQ(shown()->geometry().bottom(), before.bottom());
  EXPECT_FALSE(widgetOf(*second)->isVisible());
  second->setHidden(false);
  EXPECT_TRUE(until([&] { return shown()->geometry() == before; }));
}

TEST_F(QtWindowsTest, WithoutATrayThePanelIsAWindowWithTheMenu) {
  item.shown = false;
  show();
  EXPECT_FALSE(shown()->windowFlags().testFlag(Qt::FramelessWindowHint));
  auto* button = shown()->findChild<QToolButton*>();
  ASSERT_NE(button, nullptr);
  EXPECT_EQ(button->accessibleName(), QStringLiteral("Menu"));
  button->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Space);
  EXPECT_EQ(item.menuRequests, 1);

  window->orderOut(nullptr);
  item.shown = true;
  show();
  EXPECT_TRUE(shown()->windowFlags().testFlag(Qt::FramelessWindowHint));
  EXPECT_TRUE(shown()->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

TEST_F(QtWindowsTest, ViewsThatComeAndGoAreShown) {
  show();
  const auto third = ui_test::make<controls::CToggleButton>({});
  content->addSubview(third);
  EXPECT_TRUE(until([&] { return widgetOf(*third) != nullptr; }));
  label->removeFromSuperview();
  EXPECT_TRUE(until([&] { return widgetOf(*label) == nullptr; }));
  EXPECT_NE(widgetOf(*first), nullptr);
}

TEST_F(QtWindowsTest, ChangesOfOneTurnReachTheScreenTogether) {
  show();
  settle();
  const EventCount paints(QEvent::Paint);
  for (int i = 0; i < 50; ++i) label->setStringValue("Sound " + std::to_string(i % 2));
  label->setStringValue("Noise");
  auto& shown = dynamic_cast<QLabel&>(*widgetOf(*label));
  EXPECT_EQ(shown.text(), QStringLiteral("Sound"));
  EXPECT_TRUE(until([&] { return shown.text() == QLatin1String("Noise"); }));
  settle();
  EXPECT_LT(paints.count, 20);
}

TEST_F(QtWindowsTest, SlideIsPaintedToItsEndAndThenNothingWakes) {
  show();
  QWidget& widget = *widgetOf(*first);
  const QImage off = widget.grab().toImage();
  EXPECT_TRUE(slidesOnInSteps([this] {
    EXPECT_TRUE(until([this] { return !first->isAnimating(loop.now()); }));
    loop.sleep(40ms);
  }));
  EXPECT_NE(widget.grab().toImage(), off);
  settle();
  const EventCount timers(QEvent::Timer);
  loop.sleep(100ms);
  // The one of the sleep itself.
  EXPECT_LE(timers.count, 1);
}

TEST_F(QtWindowsTest, SlideGoesOnWhileTheMainThreadSleeps) {
  show();
  EXPECT_TRUE(slidesOnInSteps([this] { loop.sleep(200ms); }));
}

TEST_F(QtWindowsTest, ThemeChangesAtRunTimeAreFollowed) {
  show();
  const QPalette former = QApplication::palette();
  const QSize size = shown()->size();
  const QFont font = QApplication::font();
  QPalette dark(QColor(40, 40, 44));
  dark.setColor(QPalette::WindowText, QColor(245, 245, 245));
  QApplication::setPalette(dark);
  QFont larger = font;
  larger.setPointSizeF(font.pointSizeF() * 2);
  QApplication::setFont(larger);
  EXPECT_TRUE(until([&] { return shown()->width() > size.width(); }));
  const QColor text = widgetOf(*label)->palette().color(QPalette::WindowText);
  EXPECT_GE(contrast(text, QColor(40, 40, 44)), kTextContrast);
  QApplication::setFont(font);
  QApplication::setPalette(former);
}

}  // namespace
}  // namespace linux_desktop
