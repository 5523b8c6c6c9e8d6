#include "desktop/linux/ui/ViewTree.h"

#include <QWidgetItem>
#include <algorithm>
#include <utility>

#include "desktop/linux/ui/ButtonWidgets.h"
#include "desktop/linux/ui/ContentWidgets.h"
#include "desktop/linux/ui/ShortcutText.h"
#include "platform/appkit/NSView.h"

namespace linux_desktop {

using platform::NSStackView;
using platform::NSView;
using platform::NSViewKind;
using platform::ViewChange;

namespace {

/// A widget in a layout that is placed by its inner part and reaches `overhang` beyond it on each
/// side. With an overhang it keeps its preferred size, in the middle of its cell.
class OverhangItem final : public QWidgetItem {
 public:
  OverhangItem(QWidget* widget, int overhang) : QWidgetItem(widget), overhang_(overhang) {}

  [[nodiscard]] QSize sizeHint() const override { return inner(QWidgetItem::sizeHint()); }
  [[nodiscard]] QSize minimumSize() const override { return inner(QWidgetItem::minimumSize()); }
  [[nodiscard]] QSize maximumSize() const override { return inner(QWidgetItem::maximumSize()); }
  void setGeometry(const QRect& cell) override {
    if (overhang_ == 0) {
      QWidgetItem::setGeometry(cell);
      return;
    }
    QRect placed(QPoint(), QWidgetItem::sizeHint());
    placed.moveCenter(cell.center());
    widget()->setGeometry(placed);
  }

 private:
  [[nodiscard]] QSize inner(QSize size) const {
    return {std::max(0, size.width() - 2 * overhang_), std::max(0, size.height() - 2 * overhang_)};
  }

  int overhang_;
};

constexpr std::chrono::milliseconds kFrame{16};

bool isHiddenInTree(const NSView& view) {
  for (const NSView* at = &view; at != nullptr; at = at->superview()) {
    if (at->isHidden()) return true;
  }
  return false;
}

bool fills(const NSView& view) {
  const auto* stack = dynamic_cast<const NSStackView*>(&view);
  return stack != nullptr && stack->fills();
}

bool isRow(const QBoxLayout& layout) {
  return layout.direction() == QBoxLayout::LeftToRight;
}

}  // namespace

struct ViewTree::KindRow {
  NSViewKind kind;
  void (ViewTree::*add)(const std::shared_ptr<NSView>& view, QBoxLayout& layout);
};

const ViewTree::KindRow ViewTree::kKinds[] = {
    {NSViewKind::Custom, &ViewTree::addLayers},
    {NSViewKind::Stack, &ViewTree::addStack},
    {NSViewKind::Label, &ViewTree::addLabel},
    {NSViewKind::Image, &ViewTree::addWidget<ImageWidget, platform::NSImageView>},
    {NSViewKind::Separator, &ViewTree::addWidget<SeparatorWidget, NSView>},
    {NSViewKind::Button, &ViewTree::addControl<ButtonWidget>},
    {NSViewKind::Checkbox, &ViewTree::addControl<CheckboxWidget>},
    {NSViewKind::Box, &ViewTree::addBox},
};

ViewTree::ViewTree(const std::shared_ptr<NSView>& root, QWidget& host, QBoxLayout& layout,
                   Clock clock, PressObserver& presses)
    : host_(host), clock_(std::move(clock)), presses_(presses) {
  frames_.setTimerType(Qt::PreciseTimer);
  frames_.setInterval(kFrame);
  QObject::connect(&frames_, &QTimer::timeout, &frames_, [this] { step(); });
  // Those of a tree that was there before.
  while (layout.count() > 0) const std::unique_ptr<QLayoutItem> gone(layout.takeAt(0));
  add(root, layout);
  readVisibility();
}

ViewTree::~ViewTree() {
  while (!widgets_.empty()) widgets_.pop_back();
}

// --- Building ---

void ViewTree::add(const std::shared_ptr<NSView>& view, QBoxLayout& layout) {
  const auto* row = std::ranges::find(kKinds, view->kind(), &KindRow::kind);
  (this->*row->add)(view, layout);
  const int index = layout.count() - 1;
  layout.setStretch(index, fills(*view) ? 1 : 0);
  if (isRow(layout)) layout.itemAt(index)->setAlignment(Qt::AlignVCenter);
}

void ViewTree::addStack(const std::shared_ptr<NSView>& view, QBoxLayout& layout) {
  const auto& stack = static_cast<const NSStackView&>(*view);
  const auto direction = stack.orientation() == NSStackView::Orientation::Horizontal
                             ? QBoxLayout::LeftToRight
                             : QBoxLayout::TopToBottom;
  auto* inner = new QBoxLayout(direction);
  layout.addLayout(inner);
  const NSStackView::Insets& insets = stack.edgeInsets();
  inner->setContentsMargins(qRound(insets.left), qRound(insets.top), qRound(insets.right),
                            qRound(insets.bottom));
  inner->setSpacing(qRound(stack.spacing()));
  for (const auto& child : stack.subviews()) add(child, *inner);
}

void ViewTree::addLayers(const std::shared_ptr<NSView>& view, QBoxLayout& layout) {
  auto widget = std::make_unique<LayerWidget>(view, clock_, presses_, layout.parentWidget());
  layers_.push_back(widget.get());
  place(std::move(widget), layout);
}

void ViewTree::addLabel(const std::shared_ptr<NSView>& view, QBoxLayout& layout) {
  const auto& field = static_cast<const platform::NSTextField&>(*view);
  if (field.content() == platform::NSTextContent::FilePath) {
    addWidget<FilePathWidget, platform::NSTextField>(view, layout);
  } else {
    addWidget<LabelWidget, platform::NSTextField>(view, layout);
  }
}

void ViewTree::addBox(const std::shared_ptr<NSView>& view, QBoxLayout& layout) {
  auto widget = std::make_unique<BoxWidget>(std::static_pointer_cast<platform::NSBox>(view),
                                            presses_, layout.parentWidget());
  QBoxLayout& inside = widget->inside();
  place(std::move(widget), layout);
  for (const auto& child : view->subviews()) add(child, inside);
}

template <class Widget>
void ViewTree::addControl(const std::shared_ptr<NSView>& view, QBoxLayout& layout) {
  place(std::make_unique<Widget>(std::static_pointer_cast<platform::NSButton>(view), presses_,
                                 layout.parentWidget()),
        layout);
}

template <class Widget, class View>
void ViewTree::addWidget(const std::shared_ptr<NSView>& view, QBoxLayout& layout) {
  place(std::make_unique<Widget>(std::static_pointer_cast<View>(view), layout.parentWidget()),
        layout);
}

void ViewTree::place(std::unique_ptr<ViewWidget> widget, QBoxLayout& layout) {
  readCommon(*widget);
  layout.addItem(new OverhangItem(&widget->widget(), widget->overhang()));
  widgets_.push_back(std::move(widget));
}

// --- Keeping up ---

void ViewTree::update(const std::vector<platform::port::ChangedView>& changes) {
  bool visibility = false;
  for (const auto& [view, change] : changes) {
    visibility = visibility || includes(change, ViewChange::Hidden);
    ViewWidget* widget = widgetOf(*view);
    if (widget == nullptr) continue;
    widget->viewDidChange(change);
    if (includes(change, ViewChange::Attributes | ViewChange::Content)) readCommon(*widget);
  }
  if (visibility) readVisibility();
  step();
}

ViewWidget* ViewTree::widgetOf(const NSView& view) const {
  for (const NSView* at = &view; at != nullptr; at = at->superview()) {
    const auto found =
        std::ranges::find_if(widgets_, [at](const auto& widget) { return &widget->view() == at; });
    if (found != widgets_.end()) return found->get();
  }
  return nullptr;
}

void ViewTree::readCommon(ViewWidget& widget) const {
  widget.widget().setAccessibleName(widget.accessibleName());
  widget.widget().setAccessibleDescription(
      shortcutInWords(QString::fromStdString(widget.view().accessibilityHelp())));
}

void ViewTree::readVisibility() {
  for (const auto& widget : widgets_) widget->widget().setVisible(!isHiddenInTree(widget->view()));
}

void ViewTree::themeDidChange() {
  for (const auto& widget : widgets_) widget->themeDidChange();
}

void ViewTree::step() {
  bool animating = false;
  for (LayerWidget* layer : layers_) animating = layer->step() || animating;
  if (!animating || !host_.isVisible()) {
    frames_.stop();
  } else if (!frames_.isActive()) {
    frames_.start();
  }
}

}  // namespace linux_desktop
