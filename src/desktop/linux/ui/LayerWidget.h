#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/ui/ViewWidget.h"

namespace linux_desktop {

using Clock = std::function<platform::MonotonicTime()>;

/// A custom view: paints its layers and those of all views in it, at its content scale and as much
/// larger as the text is. From right to left it is painted the other way round.
///
/// Reports the main button; where the view accepts the keyboard, Space and assistive technology
/// too, all in the same way. Whatever ends a press (the pointer let go elsewhere, the widget
/// hidden, the focus lost while Space was down) is its release.
class LayerWidget final : public WidgetOf<platform::NSView> {
 public:
  /// `presses` outlives the widget.
  LayerWidget(std::shared_ptr<platform::NSView> view, Clock clock, PressObserver& presses,
              QWidget* parent);

  void viewDidChange(platform::ViewChange change) override;
  [[nodiscard]] bool actsOn(int key) const override {
    return key == Qt::Key_Space && view_->acceptsFirstResponder();
  }
  [[nodiscard]] int overhang() const override { return kOverhang; }
  [[nodiscard]] QSize sizeHint() const override;

  /// Paints again if something in the view has moved since the last step; whether it still does.
  bool step();
  /// A press and a release, as by a click. Nothing while the user is pressing the view.
  void click();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  /// Room for the focus ring and for shadows.
  static constexpr int kOverhang = 6;
  enum class HeldBy { Nothing, Pointer, Keyboard };

  void press(HeldBy by, QPointF at);
  void release(QPointF at);
  void readFocusPolicy();
  void announceState();
  void paintFocusRing(QPainter& painter) const;
  [[nodiscard]] QRectF viewRect() const;

  Clock clock_;
  PressObserver& presses_;
  std::optional<bool> announcedState_;
  HeldBy heldBy_ = HeldBy::Nothing;
  bool showsFocus_ = false;
  bool wasAnimating_ = false;
};

}  // namespace linux_desktop
