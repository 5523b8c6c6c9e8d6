#include "desktop/linux/ui/QtWindows.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QStyle>
#include <QTest>

#include "desktop/linux/ui/Theme.h"
#include "desktop/ui/UiTest.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSTextField.h"

namespace linux_desktop {
namespace {

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

/// A window at a status item with a text and two switches.
class QtWindowsTest : public ui_test::UiTest, public platform::NSWindowDelegate {
 protected:
  QtWindowsTest() {
    content->addSubview(label);
    content->addSubview(first);
    content->addSubview(second);
    window->setContentView(content);
    window->setDelegate(this);
  }
  ~QtWindowsTest() override { window->orderOut(nullptr); }

  void windowShouldClose() override {}
  void userActedElsewhere() override {}

  void show() { present(*window, platform::port::PlacedAtStatusItem{&item}); }

  /// As the keyboard does: to whatever has the focus.
  static void key(Qt::Key key, QTest::KeyAction action = QTest::Click) {
    QTest::sendKeyEvent(action, QApplication::focusWidget(), key, QString(), Qt::NoModifier);
  }

  /// Whether the first switch is painted in several steps when it slides on. A busy machine leaves
  /// steps out, but not those of every slide.
  bool slidesOnInSteps() {
    constexpr int kFewest = 4;
    for (int slide = 0; slide < 20; ++slide) {
      first->setIsOn(false);
      EXPECT_TRUE(until([this] { return !first->isAnimating(loop.now()); }));
      const EventCount paints(QEvent::Paint);
      first->setIsOn(true);
      window->displayIfNeeded();
      loop.sleep(400ms);
      if (paints.count >= kFewest) return true;
    }
    return false;
  }

  ui_test::TestStatusItem item;
  std::shared_ptr<platform::NSStackView> content =
      ui_test::make<platform::NSStackView>({{"spacing", "8"}, {"left", "12"}, {"top", "12"}});
  std::shared_ptr<platform::NSTextField> label = ui_test::make<platform::NSTextField>(
      {{"text", "Sound"}, {"textColor", "secondaryLabelColor"}});
  std::shared_ptr<controls::CToggleButton> first =
      ui_test::make<controls::CToggleButton>({{"accessibilityHelp", "Mutes the speaker"}});
  std::shared_ptr<controls::CToggleButton> second = ui_test::make<controls::CToggleButton>({});
  std::shared_ptr<platform::NSWindow> window =
      std::make_shared<platform::NSWindow>(platform::NSWindowStyle::Popover);
};

TEST_F(QtWindowsTest, WhatStandsInForAPopoverBecomesItWhenTheTrayIsALittleLate) {
  item.shown = false;
  show();
  ASSERT_EQ(shown()->chrome(), Chrome::OrdinaryWithMenu);
  item.shown = true;
  windows.statusItemsChanged();
  EXPECT_TRUE(until([] { return shown() != nullptr && isPopover(shown()->chrome()); }));
  EXPECT_TRUE(until([this] { return window->isKeyWindow(); }));
}

TEST_F(QtWindowsTest, PopoverWaitsForAnItemThatIsComingAndComesUpAlsoWhereItDoesNot) {
  for (const bool comes : {true, false}) {
    item.shown = false;
    item.coming = true;
    window->show(platform::port::PlacedAtStatusItem{&item});
    window->makeKeyWindow();
    settle();
    EXPECT_EQ(shown(), nullptr);
    item.shown = comes;
    item.coming = false;
    windows.statusItemsChanged();
    ASSERT_TRUE(until([this] { return window->isKeyWindow(); }));
    ASSERT_NE(shown(), nullptr);
    EXPECT_EQ(isPopover(shown()->chrome()), comes);
    window->orderOut(nullptr);
    ASSERT_TRUE(until([this] { return !window->isKeyWindow() && shown() == nullptr; }));
  }
}

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

TEST_F(QtWindowsTest, SlideIsPaintedToItsEndAlsoWhileTheMainThreadSleepsAndThenNothingWakes) {
  show();
  QWidget& widget = *widgetOf(*first);
  const QImage off = widget.grab().toImage();
  EXPECT_TRUE(slidesOnInSteps());
  EXPECT_NE(widget.grab().toImage(), off);
  settle();
  const EventCount timers(QEvent::Timer);
  loop.sleep(100ms);
  // The one of the sleep itself.
  EXPECT_LE(timers.count, 1);
}

TEST_F(QtWindowsTest, AnotherFontAtRunTimeIsFollowedByTheTextAndWhatStandsBesideIt) {
  const auto image = ui_test::make<platform::NSImageView>({{"size", "22"}});
  const auto tick = ui_test::make<platform::NSCheckbox>({{"title", "On"}});
  const auto path = ui_test::make<platform::NSTextField>({{"content", "filePath"}});
  content->addSubview(image);
  content->addSubview(tick);
  content->addSubview(path);
  show();
  const auto tickSize = [&] {
    return widgetOf(*tick)->style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, nullptr);
  };
  const auto sizes = [&] {
    return std::vector<int>{widgetOf(*label)->height(), widgetOf(*first)->width(),
                            widgetOf(*first)->height(), widgetOf(*image)->width(),
                            widgetOf(*path)->height(),  tickSize()};
  };
  const std::vector<int> before = sizes();
  const QFont font = QApplication::font();
  QFont large = font;
  large.setPixelSize(30);
  QApplication::setFont(large);
  EXPECT_TRUE(until([&] { return widgetOf(*image)->width() == 44; })) << widgetOf(*image)->width();
  const std::vector<int> now = sizes();
  for (std::size_t i = 0; i < now.size(); ++i) EXPECT_GT(now[i], before[i] * 3 / 2) << i;
  QApplication::setFont(font);
  EXPECT_TRUE(until([&] { return sizes() == before; }));
}

TEST_F(QtWindowsTest, AnotherPaletteAtRunTimeIsFollowed) {
  show();
  const QPalette former = QApplication::palette();
  QPalette dark(QColor(40, 40, 44));
  dark.setColor(QPalette::WindowText, QColor(245, 245, 245));
  QApplication::setPalette(dark);
  settle();
  const QColor text = widgetOf(*label)->palette().color(QPalette::WindowText);
  EXPECT_GE(contrast(text, QColor(40, 40, 44)), kTextContrast);
  QApplication::setPalette(former);
}

TEST_F(QtWindowsTest, SwitchIsMirroredFromRightToLeft) {
  first->setBackColor(platform::NSColor::blackColor());
  first->setFillColor(platform::NSColor::blackColor());
  show();
  const auto knobIsOnTheRight = [&] {
    const QImage look = widgetOf(*first)->grab().toImage();
    const QPoint left(look.width() / 3, look.height() / 2);
    const QPoint right(look.width() - 1 - left.x(), left.y());
    const bool isRight = look.pixelColor(right) == Qt::white;
    EXPECT_NE(look.pixelColor(left) == Qt::white, isRight);
    return isRight;
  };
  EXPECT_FALSE(knobIsOnTheRight());
  QApplication::setLayoutDirection(Qt::RightToLeft);
  EXPECT_TRUE(until(knobIsOnTheRight));
  first->setIsOn(true);
  EXPECT_TRUE(until([&] { return !first->isAnimating(loop.now()); }));
  EXPECT_FALSE(knobIsOnTheRight());
  QApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(QtWindowsTest, TabReachesEverySwitchThatTakesTheKeyboardAndSpaceFlipsIt) {
  const auto passedOver = ui_test::make<controls::CToggleButton>({});
  passedOver->statetag = -1;
  content->addSubview(passedOver);
  show();
  for (const auto& toggle : {first, second}) {
    key(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), widgetOf(*toggle));
    key(Qt::Key_Space, QTest::Press);
    EXPECT_FALSE(toggle->isOn());
    EXPECT_EQ(toggle->circle()->frame().width, 15) << "held down";
    key(Qt::Key_Space, QTest::Release);
    EXPECT_TRUE(toggle->isOn());
    EXPECT_EQ(toggle->circle()->frame().width, 12);
  }
  key(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), widgetOf(*first));
  key(Qt::Key_Backtab);
  EXPECT_EQ(QApplication::focusWidget(), widgetOf(*second));
}

TEST_F(QtWindowsTest, FocusIsSeenWhenTheKeyboardBroughtItAndNotAfterAClick) {
  show();
  QWidget& widget = *widgetOf(*first);
  const QImage calm = widget.grab().toImage();
  widget.setFocus(Qt::MouseFocusReason);
  EXPECT_EQ(widget.grab().toImage(), calm);
  widget.clearFocus();
  key(Qt::Key_Tab);
  EXPECT_NE(widget.grab().toImage(), calm);
}

TEST_F(QtWindowsTest, PressThatIsLetGoOutsideIsReleased) {
  show();
  QWidget* widget = widgetOf(*first);
  QTest::mousePress(widget, Qt::LeftButton);
  EXPECT_EQ(first->circle()->frame().width, 15);
  QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, QPoint(-200, -200));
  EXPECT_TRUE(first->isOn());
  QTest::mouseClick(widget, Qt::RightButton);
  EXPECT_TRUE(first->isOn());
  QTest::mouseDClick(widget, Qt::LeftButton);
  EXPECT_TRUE(first->isOn()) << "two clicks are two flips";
}

TEST_F(QtWindowsTest, PressIsReleasedWhenThePanelGoesOrTheFocusMovesOn) {
  show();
  key(Qt::Key_Tab);
  key(Qt::Key_Space, QTest::Press);
  key(Qt::Key_Tab);
  EXPECT_TRUE(first->isOn());
  QTest::mousePress(widgetOf(*second), Qt::LeftButton);
  window->orderOut(nullptr);
  EXPECT_FALSE(second->isOn()) << "nothing is reported from inside a call";
  EXPECT_TRUE(until([this] { return second->isOn(); }));
}

TEST_F(QtWindowsTest, ScreenReaderIsToldTheHelpAndCanPressASwitchByEachName) {
  show();
  QAccessibleInterface& reader = *QAccessible::queryAccessibleInterface(widgetOf(*first));
  EXPECT_EQ(reader.text(QAccessible::Description), QStringLiteral("Mutes the speaker"));
  EXPECT_TRUE(reader.state().checkable && reader.state().focusable);
  reader.actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_TRUE(first->isOn());
  reader.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_FALSE(first->isOn());
}

}  // namespace
}  // namespace linux_desktop
