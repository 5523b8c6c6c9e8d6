#include "desktop/linux/ui/ModalDialog.h"

#include <QWindow>
#include <algorithm>
#include <utility>

#include "desktop/linux/ui/ExposeWatch.h"
#include "desktop/linux/ui/QtWindowPeer.h"

namespace linux_desktop {

ModalDialog::ModalDialog(std::unique_ptr<QDialog> dialog, QtWindowPeer* window,
                         WindowServices& services)
    : services_(services), window_(window), dialog_(std::move(dialog)) {
  dialog_->setWindowModality(window_ == nullptr ? Qt::ApplicationModal : Qt::WindowModal);
  if (window_ == nullptr) ++services_.alerts;
}

ModalDialog::~ModalDialog() {
  end();
  QObject::disconnect(dialog_.get(), nullptr, nullptr, nullptr);
  dialog_->hide();
  // Its own event may be what destroys us.
  dialog_.release()->deleteLater();
  // Not every window manager gives the keyboard back to the window that the dialog took it from.
  QtWindowPeer* behind = windowBehind();
  if (services_.alerts == 0 && behind != nullptr) behind->makeKey();
}

QtWindowPeer* ModalDialog::windowBehind() const {
  const auto& shown = services_.shown;
  if (window_ == nullptr) return shown.empty() ? nullptr : shown.back();
  return std::ranges::find(shown, window_) == shown.end() ? nullptr : window_;
}

void ModalDialog::show() {
  dialog_->winId();
  QWindow& window = *dialog_->windowHandle();
  if (const QtWindowPeer* behind = windowBehind()) window.setTransientParent(behind->handle());
  dialog_->show();
  OwnWindows& ownWindows = services_.ownWindows;
  ownWindows.markAsAskedFor(window);
  onceExposed(window, [&window, &ownWindows] { ownWindows.activate(window, {}); });
}

void ModalDialog::end() {
  if (std::exchange(ended_, true)) return;
  if (window_ == nullptr) --services_.alerts;
  for (QtWindowPeer* peer : services_.shown) peer->alertDidEnd();
}

}  // namespace linux_desktop
