#pragma once

#include <QLabel>
#include <QSvgRenderer>
#include <QVBoxLayout>
#include <QWidget>
#include <memory>
#include <utility>

#include "desktop/linux/ui/PictureLoader.h"
#include "desktop/linux/ui/ViewWidget.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSImage.h"
#include "platform/appkit/NSTextField.h"

namespace linux_desktop {

/// A label in the desktop's font and the theme's colours, in several lines where one would be very
/// long. Of a shortcut it shows what can be read, and says it in words to who points at it or has
/// it read.
class LabelWidget final : public WidgetOf<platform::NSTextField, QLabel> {
 public:
  LabelWidget(std::shared_ptr<platform::NSTextField> field, QWidget* parent);

  void viewDidChange(platform::ViewChange change) override;
  void themeDidChange() override;
  /// The text, after what the view is called where that says something else.
  [[nodiscard]] QString accessibleName() const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 private:
  void arrange();
  [[nodiscard]] int longestLine() const;
  [[nodiscard]] QString words() const;
};

/// A thin line across its column.
class SeparatorWidget final : public WidgetOf<platform::NSView> {
 public:
  SeparatorWidget(std::shared_ptr<platform::NSView> view, QWidget* parent)
      : WidgetOf(std::move(view), parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  }

  void viewDidChange(platform::ViewChange) override {}
  [[nodiscard]] QSize sizeHint() const override { return {1, 1}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A picture, or the shape of one in the view's tint.
class ImageWidget final : public WidgetOf<platform::NSImageView> {
 public:
  ImageWidget(std::shared_ptr<platform::NSImageView> view, QWidget* parent);

  void viewDidChange(platform::ViewChange change) override;
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QSvgRenderer renderer_;
};

/// A field with a rounded frame around its one subview. In one of the theme's colours the frame is
/// a thin line. In any other it marks the box: strong, in a shade of that colour that stands out
/// from the window, and with a breath of it over the field. With an action it takes clicks, as one
/// press and one release.
class BoxWidget final : public WidgetOf<platform::NSBox> {
 public:
  /// `presses` outlives the widget.
  BoxWidget(std::shared_ptr<platform::NSBox> box, PressObserver& presses, QWidget* parent);

  void viewDidChange(platform::ViewChange change) override;
  void themeDidChange() override;
  /// Where the subview goes.
  [[nodiscard]] QBoxLayout& inside() { return inside_; }
  [[nodiscard]] bool isMarked() const { return view_->borderColor().rgba().has_value(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  [[nodiscard]] bool takes(const QMouseEvent& event) const;

  PressObserver& presses_;
  QVBoxLayout inside_{this};
};

/// A label whose text is the path of a file: elided in the middle, whole in the tool tip and for
/// assistive technology, beside a small picture of the file. Any other text is shown as it is. Its
/// size does not depend on the text.
class FilePathWidget final : public WidgetOf<platform::NSTextField> {
 public:
  FilePathWidget(std::shared_ptr<platform::NSTextField> field, QWidget* parent);

  void viewDidChange(platform::ViewChange change) override;
  void themeDidChange() override;
  [[nodiscard]] QString accessibleName() const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  /// The text as it is shown now.
  [[nodiscard]] QString shownText() const;
  /// Null until it has been read, and for what is no picture.
  [[nodiscard]] const QImage& thumbnail() const { return thumbnail_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QString text() const;
  [[nodiscard]] static QSize thumbnailSize();
  [[nodiscard]] QRect textArea() const;

  QImage thumbnail_;
  PictureLoader loader_;
};

}  // namespace linux_desktop
