#pragma once

#include <QBoxLayout>
#include <QTimer>
#include <memory>
#include <vector>

#include "desktop/linux/ui/LayerWidget.h"
#include "platform/port/Windows.h"

namespace linux_desktop {

/// The widgets of a tree of views, kept as the model says; where views come or go, it is made anew.
///
/// One table has a row for each kind of view; stacks are layouts, everything else is a widget.
/// While something in the tree moves and `host` is visible, it is painted from the presentation
/// values at the screen's usual rate; the timer for that exists only then.
class ViewTree {
 public:
  /// Fills `layout`, which lies in `host`. Both, and `presses`, outlive this.
  ViewTree(const std::shared_ptr<platform::NSView>& root, QWidget& host, QBoxLayout& layout,
           Clock clock, PressObserver& presses);
  ~ViewTree();

  void update(const std::vector<platform::port::ChangedView>& changes);
  void themeDidChange();
  /// The host came onto the screen: goes on painting what still moves.
  void resume() { step(); }

 private:
  struct KindRow;
  static const KindRow kKinds[];

  void add(const std::shared_ptr<platform::NSView>& view, QBoxLayout& layout);
  void addStack(const std::shared_ptr<platform::NSView>& view, QBoxLayout& layout);
  void addLayers(const std::shared_ptr<platform::NSView>& view, QBoxLayout& layout);
  void addLabel(const std::shared_ptr<platform::NSView>& view, QBoxLayout& layout);
  void addBox(const std::shared_ptr<platform::NSView>& view, QBoxLayout& layout);
  template <class Widget>
  void addControl(const std::shared_ptr<platform::NSView>& view, QBoxLayout& layout);
  template <class Widget, class View>
  void addWidget(const std::shared_ptr<platform::NSView>& view, QBoxLayout& layout);
  void place(std::unique_ptr<ViewWidget> widget, QBoxLayout& layout);
  [[nodiscard]] ViewWidget* widgetOf(const platform::NSView& view) const;
  void readCommon(ViewWidget& widget) const;
  void readVisibility();
  void step();

  QWidget& host_;
  Clock clock_;
  PressObserver& presses_;
  /// What is inside a widget comes after it.
  std::vector<std::unique_ptr<ViewWidget>> widgets_;
  std::vector<LayerWidget*> layers_;
  QTimer frames_;
};

}  // namespace linux_desktop
