#pragma once

#include <QWidget>

#include "desktop/linux/ui/PictureLoader.h"

namespace linux_desktop {

/// A pane that shows the picture in a file, or says that there is none to be seen.
class PicturePreview final : public QWidget {
 public:
  explicit PicturePreview(QWidget* parent);

  /// An empty path: nothing.
  void show(const QString& path);
  /// Null until it has been read.
  [[nodiscard]] const QImage& picture() const { return picture_; }
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void say(const QString& text);

  QImage picture_;
  QString text_;
  PictureLoader loader_;
};

}  // namespace linux_desktop
