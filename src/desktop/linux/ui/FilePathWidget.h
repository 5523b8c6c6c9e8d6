#pragma once

#include <QWidget>
#include <memory>

#include "desktop/linux/ui/PictureLoader.h"
#include "desktop/linux/ui/ViewWidget.h"
#include "platform/appkit/NSTextField.h"

namespace linux_desktop {

/// A label whose text is the path of a file: elided in the middle, whole in the tool tip and for
/// assistive technology, beside a small picture of the file. Any other text is shown as it is. Its
/// size does not depend on the text.
class FilePathWidget final : public QWidget, public ViewWidget {
 public:
  FilePathWidget(std::shared_ptr<platform::NSTextField> field, QWidget* parent);

  [[nodiscard]] QWidget& widget() override { return *this; }
  [[nodiscard]] const platform::NSView& view() const override { return *field_; }
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
  [[nodiscard]] QRect textArea() const;

  std::shared_ptr<platform::NSTextField> field_;
  QImage thumbnail_;
  PictureLoader loader_;
};

}  // namespace linux_desktop
