#pragma once

#include <QPointF>
#include <QWidget>
#include <memory>
#include <utility>

#include "platform/appkit/NSView.h"

namespace linux_desktop {

/// Told of the presses on views, with where the pointer was in the window, y down. Each press is
/// followed by one release.
class PressObserver {
 public:
  virtual ~PressObserver() = default;
  virtual void pressed(platform::NSView& view, QPointF inWindow) = 0;
  virtual void released(platform::NSView& view, QPointF inWindow) = 0;
};

/// What stands on the screen for one view of the model. Each is a widget as well.
class ViewWidget {
 public:
  virtual ~ViewWidget() = default;

  [[nodiscard]] virtual QWidget& widget() = 0;
  [[nodiscard]] virtual const platform::NSView& view() const = 0;
  /// The view, or one that is painted with it, changed: read the model again.
  virtual void viewDidChange(platform::ViewChange change) = 0;
  /// The desktop's palette or font changed.
  virtual void themeDidChange() {
    widget().updateGeometry();
    widget().update();
  }
  /// What assistive technology calls it; empty: what the widget itself says.
  [[nodiscard]] virtual QString accessibleName() const {
    return QString::fromStdString(view().accessibilityLabel());
  }
  /// Whether the Qt::Key does something here while the widget has the focus.
  [[nodiscard]] virtual bool actsOn(int /*key*/) const { return false; }
  /// How far the widget reaches beyond the view on each side, for what is painted there. Layouts
  /// place the view and let neighbours have this room too.
  [[nodiscard]] virtual int overhang() const { return 0; }
};

/// A widget of Qt's, or ours, for views of that class.
template <class View, class Widget = QWidget>
class WidgetOf : public Widget, public ViewWidget {
 public:
  [[nodiscard]] QWidget& widget() override { return *this; }
  [[nodiscard]] const View& view() const override { return *view_; }

 protected:
  WidgetOf(std::shared_ptr<View> view, QWidget* parent) : Widget(parent), view_(std::move(view)) {}

  std::shared_ptr<View> view_;
};

}  // namespace linux_desktop
