#include "desktop/linux/ui/SeparatorWidget.h"

#include <QPainter>

#include "desktop/linux/ui/Theme.h"

namespace linux_desktop {

void SeparatorWidget::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), Theme(palette()).color(platform::NSSystemColor::Separator));
}

}  // namespace linux_desktop
