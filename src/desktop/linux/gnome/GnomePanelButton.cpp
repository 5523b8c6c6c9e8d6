#include "desktop/linux/gnome/GnomePanelButton.h"

#include <QBuffer>
#include <QPixmap>
#include <chrono>
#include <utility>

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

GnomePanelButton::GnomePanelButton(GnomeShell& shell) : shell_(shell) {
  patience_.setSingleShot(true);
  patience_.setInterval(kPatience);
  QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] { become(false); });
  QObject::connect(&shell_, &GnomeShell::gone, &patience_, [this] { patience_.start(); });
  QObject::connect(&shell_, &GnomeShell::ready, &patience_, [this] {
    patience_.stop();
    send();
    become(true);
  });
  patience_.start();
}

void GnomePanelButton::show(const QString& service, const QIcon& icon) {
  service_ = service;
  picture_ = pngOf(icon);
  send();
}

void GnomePanelButton::become(bool there) {
  if (std::exchange(isThere_, there) != there) tellChanged();
}

void GnomePanelButton::send() const {
  if (!service_.isEmpty())
    shell_.send(QStringLiteral("Button"), QStringLiteral("Show"), {service_, picture_});
}

}  // namespace linux_desktop
