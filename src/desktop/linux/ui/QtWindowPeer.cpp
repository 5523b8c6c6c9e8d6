#include "desktop/linux/ui/QtWindowPeer.h"

#include <QApplication>
#include <QLayout>
#include <QPainter>
#include <QPixmap>
#include <QScopedValueRollback>
#include <QScreen>
#include <QSvgRenderer>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "desktop/linux/ui/PanelWindow.h"
#include "desktop/linux/ui/PopoverPlacement.h"
#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSWindow.h"

namespace linux_desktop {

using platform::NSEvent;
using platform::NSEventType;
using platform::NSView;
namespace port = platform::port;

namespace {

using CallScope = QScopedValueRollback<bool>;

constexpr std::chrono::milliseconds kOwnPress{40};
constexpr std::chrono::seconds kComingUp{1};
/// How much later than us a tray may be ready when the user logs in to a busy machine.
constexpr std::chrono::seconds kLateTray{5};

/// On a clock that goes round.
constexpr bool isNotBefore(std::uint32_t time, std::uint32_t other) {
  return static_cast<std::int32_t>(time - other) >= 0;
}

StatusItemAnchor* anchorOf(const port::Placement& placement) {
  const auto* atItem = std::get_if<port::PlacedAtStatusItem>(&placement);
  return atItem == nullptr ? nullptr : dynamic_cast<StatusItemAnchor*>(atItem->item);
}

/// The dialog of ours that the window waits for; null where it waits for none, or for the
/// desktop's own.
QWindow* dialogOver(const QWindow& window) {
  const QWidget* dialog = QApplication::activeModalWidget();
  QWindow* handle = dialog == nullptr ? nullptr : dialog->windowHandle();
  const bool isOver =
      handle != nullptr && handle->isVisible() && handle->transientParent() == &window;
  return isOver ? handle : nullptr;
}

/// The program's own, for all windows; null where its resources do not have it.
QIcon programIcon() {
  QIcon icon;
  const auto image = platform::NSImage::imageNamed("org.calmdeck.Calmdeck");
  if (!image) return icon;
  const std::string_view bytes = image->bytes();
  QSvgRenderer drawing(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
  for (const int size : {16, 24, 32, 48, 64, 128}) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace

QtWindowPeer::QtWindowPeer(platform::NSWindow& window, port::WindowClient& client,
                           WindowServices& services)
    : model_(window), client_(client), services_(services) {}

QtWindowPeer::~QtWindowPeer() {
  const CallScope scope(isCalled_, true);
  hide();
}

// --- What the model asks ---

void QtWindowPeer::show(const port::Placement& placement) {
  const CallScope scope(isCalled_, true);
  anchor_ = anchorOf(placement);
  const bool isSeen = window_ && window_->isVisible();
  waitsForItem_ = !isSeen && anchor_ != nullptr && anchor_->isComing();
  if (waitsForItem_) {
    joinShown();
  } else {
    present();
  }
}

void QtWindowPeer::present() {
  ensureWindow(chromeFor(anchor_));
  window_->winId();
  if (isPopover(window_->chrome())) moveToPlace();
  // Openbox 3.6 calls windows of other workspaces iconic; Qt believes it and would map it so.
  window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
  if (!window_->isVisible()) {
    if (isPopover(window_->chrome())) preparePopover();
    window_->show();
    shownSince_ = services_.clock();
    alertsBefore_ = services_.alerts;
    services_.ownWindows.markAsAskedFor(*handle());
    watchOutside();
    if (isPopover(window_->chrome())) {
      onceExposed(*handle(), [this] {
        insistsUntil_ = services_.clock() + kComingUp;
        insistOnPlace();
      });
    }
  }
  if (!popover_) {
    for (QtWindowPeer* other : services_.shown) other->giveWay();
  }
  window_->raise();
  joinShown();
}

void QtWindowPeer::joinShown() {
  std::erase(services_.shown, this);
  services_.shown.push_back(this);
}

void QtWindowPeer::statusItemChanged() {
  if (anchor_ == nullptr || anchor_->isComing()) return;
  const bool standsIn = anchor_->isShown() && window_ && window_->isVisible() &&
                        window_->chrome() == Chrome::OrdinaryWithMenu &&
                        services_.clock() <= shownSince_ + kLateTray;
  if (!std::exchange(waitsForItem_, false) && !standsIn) return;
  const CallScope scope(isCalled_, true);
  present();
  makeKey();
}

void QtWindowPeer::hide() {
  const CallScope scope(isCalled_, true);
  std::erase(services_.shown, this);
  anchor_ = nullptr;
  waitsForItem_ = false;
  presses_.reset();
  acts_.reset();
  popover_.reset();
  diversion_.reset();
  lastPressInside_.reset();
  insistsUntil_.reset();
  if (window_) window_->hide();
}

void QtWindowPeer::makeKey() {
  const CallScope scope(isCalled_, true);
  if (!window_ || !window_->isVisible()) return;
  // It has the keyboard, and what the click gave leave with is for nobody else.
  if (popover_) return services_.ownWindows.setToken({});
  const auto ask = [this] {
    services_.ownWindows.activate(*handle());
    if (QWindow* dialog = dialogOver(*handle())) services_.ownWindows.activate(*dialog);
  };
  // One that is minimised is not seen before it was asked for.
  if (services_.ownWindows.isKept(*handle())) return ask();
  onceExposed(*handle(), ask);
}

void QtWindowPeer::divertKeys(bool divert) {
  // One at a time: a second one would be an error of the first.
  diversion_.reset();
  if (!divert || !window_ || window_->chrome() != Chrome::Titled) return;
  diversion_ = services_.ownWindows.divertKeys(*handle());
}

void QtWindowPeer::giveWay() {
  if (!popover_) return;
  QMetaObject::invokeMethod(
      &context_,
      [this] {
        if (acts_) acts_->lostKeyboard();
      },
      Qt::QueuedConnection);
}

void QtWindowPeer::update(const std::vector<port::ChangedView>& changes, bool) {
  const CallScope scope(isCalled_, true);
  if (!window_) return;
  const bool isOther = std::ranges::any_of(changes, [](const port::ChangedView& changed) {
    return includes(changed.change, platform::ViewChange::Subviews);
  });
  if (isOther) return window_->setContent(model_.contentView());
  if (window_->views() != nullptr) window_->views()->update(changes);
}

// --- Showing ---

bool QtWindowPeer::isTitled() const {
  return model_.style() == platform::NSWindowStyle::Titled;
}

Chrome QtWindowPeer::chromeFor(const StatusItemAnchor* anchor) const {
  if (isTitled()) return Chrome::Titled;
  if (anchor == nullptr) return Chrome::Ordinary;
  if (!anchor->isShown()) return Chrome::OrdinaryWithMenu;
  return services_.ownWindows.mayBeRound() ? Chrome::RoundPopover : Chrome::Popover;
}

void QtWindowPeer::ensureWindow(Chrome chrome) {
  if (window_ && window_->chrome() == chrome) return;
  presses_.reset();
  acts_.reset();
  popover_.reset();
  const QString title =
      model_.title().empty() ? QStringLiteral("Calmdeck") : QString::fromStdString(model_.title());
  PanelObserver& observer = *this;
  window_ = std::make_unique<PanelWindow>(chrome, title, services_.clock, observer);
  if (QApplication::windowIcon().isNull()) QApplication::setWindowIcon(programIcon());
  window_->setContent(model_.contentView());
}

QRect QtWindowPeer::place() const {
  const Anchor anchor = anchor_->anchor();
  const QScreen* screen = QGuiApplication::screenAt(anchor.point);
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  const QSize size = window_->layout()->totalSizeHint();
  return placePopover(anchor, size, screen->geometry(), services_.ownWindows.panels());
}

void QtWindowPeer::moveToPlace() {
  if (popover_) {
    popover_->moveTo(place());
  } else {
    window_->move(place().topLeft());
  }
}

void QtWindowPeer::preparePopover() {
  services_.ownWindows.keepOutOfTaskLists(*handle());
  popover_ = services_.ownWindows.makePopover(*handle(), place(), [this] {
    if (acts_) acts_->pressedElsewhere();
  });
}

// i3, herbstluftwm and awesome choose the first place of every window themselves.
void QtWindowPeer::insistOnPlace() {
  if (anchor_ == nullptr || popover_ || !insistsUntil_) return;
  const QPoint wanted = place().topLeft();
  if (window_->pos() == wanted) return;
  const bool isComingUp = services_.clock() < *std::exchange(insistsUntil_, std::nullopt);
  if (isComingUp) window_->move(wanted);
}

void QtWindowPeer::resized() {
  if (anchor_ != nullptr && isPopover(window_->chrome())) moveToPlace();
}

void QtWindowPeer::moved() {
  insistOnPlace();
}

QWindow* QtWindowPeer::handle() const {
  return window_ ? window_->windowHandle() : nullptr;
}

// --- What the user does outside ---

void QtWindowPeer::watchOutside() {
  if (!isPopover(window_->chrome())) return;
  acts_ = std::make_shared<OutsideActs>(
      services_.clock, [this] { report([this] { client_.userActedElsewhere(); }); });
  anchor_->setActivationObserver([weak = std::weak_ptr(acts_)](NSEventType click) {
    const auto acts = weak.lock();
    if (!acts) return;
    if (click == NSEventType::RightMouseUp) {
      acts->menuOpens();
    } else {
      acts->itemActivated();
    }
  });
  presses_ = services_.ownWindows.watchPresses(
      *handle(), [this](const OutsidePress& press) { pressedOutside(press); });
}

void QtWindowPeer::pressedOutside(const OutsidePress& press) {
  if (isActOnOurs()) return;
  // The pointer may have left the window since: then Qt has the press, or gets it within this time.
  QTimer::singleShot(kOwnPress, &context_, [this, press] {
    if (!acts_ || (lastPressInside_ && isNotBefore(*lastPressInside_, press.time))) return;
    if (press.isOnPanel) {
      acts_->pressedOnPanel();
    } else {
      acts_->pressedElsewhere();
    }
  });
}

void QtWindowPeer::pressedInside(quint64 time) {
  lastPressInside_ = static_cast<std::uint32_t>(time);
}

// Where it lies in front of an alert, that can have neither a press nor the keyboard before it
// goes.
bool QtWindowPeer::isActOnOurs() const {
  return services_.alerts > alertsBefore_ || QApplication::activePopupWidget() != nullptr;
}

void QtWindowPeer::alertDidEnd() {
  alertsBefore_ = std::min(alertsBefore_, services_.alerts);
  if (presses_) presses_->discardPending();
}

void QtWindowPeer::activeChanged(bool active) {
  if (active) {
    report([this] { client_.windowDidBecomeKey(); });
    return;
  }
  report([this] { client_.windowDidResignKey(); });
  if (!isActOnOurs() && window_->isVisible() && acts_) acts_->lostKeyboard();
}

// --- Reports ---

void QtWindowPeer::report(std::function<void()> what) {
  if (isCalled_) {
    QMetaObject::invokeMethod(&context_, std::move(what), Qt::QueuedConnection);
  } else {
    what();
  }
}

NSEvent QtWindowPeer::eventAt(NSEventType type, QPointF inWindow) const {
  return {type, {inWindow.x(), window_->height() - inWindow.y()}};
}

void QtWindowPeer::pressed(NSView& view, QPointF inWindow) {
  report(
      [this, &view, keep = view.shared_from_this(),
       event = eventAt(NSEventType::LeftMouseDown, inWindow)] { client_.mouseDown(view, event); });
}

void QtWindowPeer::released(NSView& view, QPointF inWindow) {
  report([this, &view, keep = view.shared_from_this(),
          event = eventAt(NSEventType::LeftMouseUp, inWindow)] { client_.mouseUp(view, event); });
}

void QtWindowPeer::closeRequested() {
  report([this] { client_.windowShouldClose(); });
}

void QtWindowPeer::keyPressed(const QKeyEvent& event) {
  if (services_.keys == nullptr) return;
  if (const auto press = services_.keys->translate(event)) {
    report([this, press = *press] { client_.keyDown(press); });
  }
}

void QtWindowPeer::menuRequested(QWidget& button) {
  if (anchor_ != nullptr) anchor_->menuRequested(button);
}

}  // namespace linux_desktop
