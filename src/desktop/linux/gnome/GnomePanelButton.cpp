#include "desktop/linux/gnome/GnomePanelButton.h"

#include <QBuffer>
#include <QPixmap>
#include <chrono>

namespace linux_desktop {
namespace {

constexpr std::chrono::seconds kPatience{5};
/// In pixels; the shell makes it smaller.
constexpr int kSize = 64;

QByteArray pngOf(const QIcon& icon) {
  QBuffer file;
  file.open(QIODevice::WriteOnly);
  icon.pixmap(kSize).save(&file, "PNG");
  return file.data();
}

}  // namespace

GnomePanelButton::GnomePanelButton(GnomeShell& shell)
    : shell_(shell), isComing_(!shell.isOff()), patience_(kPatience, [this] { expect(false); }) {
  QObject::connect(&shell_, &GnomeShell::turnedOff, &patience_, [this] { expect(false); });
  QObject::connect(&shell_, &GnomeShell::gone, &patience_, [this] { expect(true); });
  QObject::connect(&shell_, &GnomeShell::ended, &patience_, [this] { patience_.start(); });
  QObject::connect(&shell_, &GnomeShell::ready, &patience_, [this] {
    send();
    expect(false);
  });
  if (isComing_) patience_.start();
}

void GnomePanelButton::expect(bool isComing) {
  if (!isComing) patience_.stop();
  isComing_ = isComing;
  tellChanged();
}

void GnomePanelButton::show(const QString& service, const QIcon& icon) {
  service_ = service;
  picture_ = pngOf(icon);
  send();
}

void GnomePanelButton::send() const {
  if (!service_.isEmpty())
    shell_.send(QStringLiteral("Button"), QStringLiteral("Show"), {service_, picture_});
}

}  // namespace linux_desktop
