#include "desktop/linux/xserver/TurnStack.h"

#include <QMetaObject>

namespace linux_desktop {

const WindowStack& TurnStack::now() {
  if (!stack_) {
    stack_ = WindowStack::read(server_);
    QMetaObject::invokeMethod(
        &context_, [this] { stack_.reset(); }, Qt::QueuedConnection);
  }
  return *stack_;
}

}  // namespace linux_desktop
