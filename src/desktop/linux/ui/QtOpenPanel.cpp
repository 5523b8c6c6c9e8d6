#include "desktop/linux/ui/QtOpenPanel.h"

#include <utility>

#include "desktop/linux/ui/ChooseFileDialog.h"

namespace linux_desktop {

QtOpenPanel::QtOpenPanel(const platform::NSOpenPanel& panel, Answered answered,
                         WindowServices& services)
    : answered_(std::move(answered)), dialog_(dialogFor(panel), nullptr, services) {
  dialog_.show();
}

std::unique_ptr<QDialog> QtOpenPanel::dialogFor(const platform::NSOpenPanel& panel) {
  auto dialog = std::make_unique<ChooseFileDialog>(panel);
  const ChooseFileDialog& shown = *dialog;
  QObject::connect(dialog.get(), &QDialog::finished, dialog.get(), [this, &shown](int result) {
    finish(result == QDialog::Accepted ? shown.chosen() : std::nullopt);
  });
  return dialog;
}

void QtOpenPanel::finish(std::optional<std::string> path) {
  dialog_.end();
  const Answered answered = std::exchange(answered_, {});
  if (answered) answered(std::move(path));
}

}  // namespace linux_desktop
