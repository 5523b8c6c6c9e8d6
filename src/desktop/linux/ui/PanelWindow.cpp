#include "desktop/linux/ui/PanelWindow.h"

#include <QCloseEvent>
#include <QEvent>
#include <QKeyEvent>
#include <QPainter>

#include "desktop/linux/ui/ButtonWidgets.h"
#include "desktop/linux/ui/Theme.h"

namespace linux_desktop {
namespace {

/// A child of the window that it watches.
class ExposeWatch final : public QObject {
 public:
  ExposeWatch(QWindow& window, std::function<void()> exposed)
      : QObject(&window), window_(window), exposed_(std::move(exposed)) {
    window.installEventFilter(this);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Expose || !window_.isExposed()) return false;
    if (const auto exposed = std::exchange(exposed_, {})) {
      watched->removeEventFilter(this);
      deleteLater();
      exposed();
    }
    return false;
  }

 private:
  QWindow& window_;
  std::function<void()> exposed_;
};

constexpr double kCornerRadius = 9;
constexpr int kBorder = 1;
constexpr int kMenuRowMargin = 2;

Qt::WindowFlags flagsFor(Chrome chrome) {
  return isPopover(chrome) ? Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                           : Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                 Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;
}

}  // namespace

void onceExposed(QWindow& window, std::function<void()> exposed) {
  if (window.isExposed()) {
    exposed();
  } else {
    // The window owns it.
    new ExposeWatch(window, std::move(exposed));
  }
}

PanelWindow::PanelWindow(Chrome chrome, const QString& title, Clock clock, PanelObserver& observer)
    : QWidget(nullptr, flagsFor(chrome)),
      chrome_(chrome),
      clock_(std::move(clock)),
      observer_(observer) {
  setWindowTitle(title);
  setAccessibleName(title);
  setAttribute(Qt::WA_TranslucentBackground, chrome == Chrome::RoundPopover);
  auto* layout = new QVBoxLayout(this);
  const int margin = isPopover(chrome) ? kBorder : 0;
  layout->setContentsMargins(margin, margin, margin, margin);
  layout->setSpacing(0);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  if (chrome == Chrome::OrdinaryWithMenu) addMenuRow(*layout);
  inner_ = new QVBoxLayout;
  layout->addLayout(inner_);
}

void PanelWindow::setContent(const std::shared_ptr<platform::NSView>& content) {
  views_.reset();
  if (content) views_ = std::make_unique<ViewTree>(content, *this, *inner_, clock_, observer_);
}

// Like a menu bar, so that the menu covers no switch when it drops down.
void PanelWindow::addMenuRow(QBoxLayout& layout) {
  auto* button = new MenuButton(this);
  connect(button, &QToolButton::clicked, this,
          [this, button] { observer_.menuRequested(*button); });
  auto* row = new QHBoxLayout;
  row->setContentsMargins(kMenuRowMargin, kMenuRowMargin, kMenuRowMargin, kMenuRowMargin);
  row->addWidget(button);
  row->addStretch();
  layout.addLayout(row);
  layout.addSpacing(kBorder);
}

bool PanelWindow::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
      observer_.activeChanged(event->type() == QEvent::WindowActivate);
      break;
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
    case QEvent::FontChange:
    case QEvent::ApplicationFontChange:
    case QEvent::ApplicationPaletteChange:
      if (views_) views_->themeDidChange();
      break;
    default:
      break;
  }
  return QWidget::event(event);
}

bool PanelWindow::eventFilter(QObject* watched, QEvent* event) {
  const bool isPress = event->type() == QEvent::MouseButtonPress ||
                       event->type() == QEvent::MouseButtonDblClick ||
                       event->type() == QEvent::TouchBegin;
  if (isPress && watched == windowHandle()) {
    observer_.pressedInside(static_cast<QInputEvent*>(event)->timestamp());
  }
  // A ShortcutOverride asks before each press whether it may be a mnemonic or the like.
  const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease ||
                     event->type() == QEvent::ShortcutOverride;
  if (isKey && chrome_ == Chrome::Titled && watched == windowHandle()) {
    return takesKey(static_cast<QKeyEvent&>(*event));
  }
  return QWidget::eventFilter(watched, event);
}

bool PanelWindow::takesKey(QKeyEvent& event) {
  const std::pair place(event.nativeScanCode(), event.timestamp());
  if (event.type() == QEvent::KeyRelease) lastRelease_ = place;
  if (event.type() == QEvent::KeyRelease || isForControls(event)) return false;
  // A held key is let go and pressed at one time, again and again. Qt, which looks whether the
  // press follows, may look before that has arrived.
  const bool isRepeat = event.isAutoRepeat() || (place.first != 0 && place == lastRelease_);
  if (event.type() == QEvent::KeyPress && !isRepeat) observer_.keyPressed(event);
  if (event.key() == Qt::Key_Backtab && event.modifiers() == Qt::ShiftModifier) return false;
  event.accept();
  return true;
}

bool PanelWindow::isForControls(const QKeyEvent& event) const {
  constexpr auto kModifiers =
      Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier | Qt::ShiftModifier;
  if ((event.modifiers() & kModifiers) != Qt::NoModifier) return false;
  if (event.key() == Qt::Key_Tab) return true;
  const auto* focused = dynamic_cast<const ViewWidget*>(focusWidget());
  return focused != nullptr && focused->actsOn(event.key());
}

void PanelWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    observer_.closeRequested();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void PanelWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  observer_.closeRequested();
}

void PanelWindow::showEvent(QShowEvent* event) {
  // Nothing is focused until the user reaches for the keyboard: a ring would be noise to a click.
  setFocus(Qt::OtherFocusReason);
  windowHandle()->installEventFilter(this);
  if (views_) views_->resume();
  QWidget::showEvent(event);
}

void PanelWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (isVisible()) observer_.resized();
}

void PanelWindow::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  if (isVisible()) observer_.moved();
}

void PanelWindow::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  if (chrome_ == Chrome::OrdinaryWithMenu) {
    const QRect content = inner_->geometry();
    QPainter(this).fillRect(0, content.top() - kBorder, width(), kBorder,
                            theme.color(platform::NSSystemColor::Separator));
  }
  if (!isPopover(chrome_)) return;
  const double radius = chrome_ == Chrome::RoundPopover ? kCornerRadius : 0;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(theme.color(platform::NSSystemColor::Separator), kBorder));
  painter.setBrush(theme.window());
  const double half = kBorder / 2.0;
  painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius, radius);
}

}  // namespace linux_desktop
