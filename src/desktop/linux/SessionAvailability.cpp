#include "desktop/linux/SessionAvailability.h"

#include "desktop/linux/language/Language.h"
#include "desktop/linux/wallpaper/WallpaperPictures.h"

namespace linux_desktop {

using platform::port::Capability;

SessionAvailability::SessionAvailability(SessionServices& session, DaemonDoNotDisturb& doNotDisturb,
                                         PulseSound& sound)
    : session_(session), doNotDisturb_(doNotDisturb), sound_(sound) {
  QObject::connect(&doNotDisturb_, &DaemonDoNotDisturb::obstacleChanged, &context_,
                   [this] { changed(); });
  session_.follow(context_, [this] { changed(); });
  session_.desktopPictures.setProgramsChanged([this] { changed(); });
  sound_.setServerMissingChanged([this] { changed(); });
}

SessionAvailability::~SessionAvailability() {
  session_.desktopPictures.setProgramsChanged({});
  sound_.setServerMissingChanged({});
}

void SessionAvailability::changed() {
  if (client_ != nullptr) client_->availabilityDidChange();
}

std::optional<std::string> SessionAvailability::obstacle(Capability capability) {
  QString why;
  switch (capability) {
    case Capability::CoverIcons:
      if (session_.covers == nullptr || !session_.covers->canCover()) {
        why = localized("no program can cover the icons");
      }
      break;
    case Capability::DoNotDisturb:
      why = doNotDisturb_.obstacleForUser();
      break;
    case Capability::HideApplications:
      if (session_.runningApplications == nullptr || !session_.runningApplications->canHide()) {
        why = localized("no program can hide the windows of others");
      }
      break;
    case Capability::MuteSpeaker:
      if (sound_.isServerMissing()) why = localized("nothing plays sound");
      break;
    case Capability::SetPictures:
      if (!session_.desktopPictures.canBeSet()) {
        why = localized("no known program draws the wallpaper");
      }
      break;
  }
  return why.isEmpty() ? std::nullopt : std::optional(why.toStdString());
}

}  // namespace linux_desktop
