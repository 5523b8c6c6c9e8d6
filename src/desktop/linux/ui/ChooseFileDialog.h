#pragma once

#include <QFileDialog>

#include "platform/appkit/NSOpenPanel.h"

namespace linux_desktop {

/// The desktop's own dialog for choosing a file where there is one, else Qt's with a preview. Only
/// files of the panel's types are offered, and no other is taken. Begins in the user's folder of
/// pictures.
class ChooseFileDialog final : public QFileDialog {
 public:
  explicit ChooseFileDialog(const platform::NSOpenPanel& panel);

  /// The file that was chosen, absolute; none when it is not one of those offered.
  [[nodiscard]] std::optional<std::string> chosen() const;

 protected:
  void done(int result) override;

 private:
  [[nodiscard]] bool isNative() const { return layout() == nullptr; }
  void addPreview();
  void addPlaces();
  void sayWhyNot();

  QStringList types_;
};

}  // namespace linux_desktop
