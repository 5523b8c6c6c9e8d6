#include "desktop/linux/gnome/GnomeCovers.h"

#include <utility>
#include <vector>

namespace linux_desktop {
namespace {

const QString kInterface = QStringLiteral("Covers");
const QString kShow = QStringLiteral("Show");
const QString kHide = QStringLiteral("Hide");

}  // namespace

class GnomeCover final : public platform::port::WindowPeer {
 public:
  explicit GnomeCover(GnomeCovers& covers) : covers_(covers) {}
  ~GnomeCover() override { takeDown(); }
  GnomeCover(const GnomeCover&) = delete;
  GnomeCover& operator=(const GnomeCover&) = delete;

  void show(const platform::port::Placement& /*anywhere*/) override {
    if (!std::exchange(isShown_, true)) covers_.entered();
  }
  void hide() override { takeDown(); }
  void makeKey() override {}
  void update(const std::vector<platform::port::ChangedView>&, bool) override {}

 private:
  void takeDown() {
    if (std::exchange(isShown_, false)) covers_.left();
  }

  GnomeCovers& covers_;
  bool isShown_ = false;
};

GnomeCovers::GnomeCovers(GnomeShell& shell) : shell_(shell) {
  QObject::connect(&shell, &GnomeShell::ready, &context_, [this] {
    if (shown_ > 0) shell_.send(kInterface, kShow);
  });
}

std::unique_ptr<platform::port::WindowPeer> GnomeCovers::createCover(
    platform::NSWindow& window, platform::port::WindowClient& client) {
  if (shell_.isOff() && others_ != nullptr) return others_->createCover(window, client);
  return std::make_unique<GnomeCover>(*this);
}

void GnomeCovers::entered() {
  if (shown_++ == 0) shell_.send(kInterface, kShow);
}

void GnomeCovers::left() {
  if (--shown_ == 0) shell_.send(kInterface, kHide);
}

}  // namespace linux_desktop
