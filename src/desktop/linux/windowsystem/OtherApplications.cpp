#include "desktop/linux/windowsystem/OtherApplications.h"

#include <QGuiApplication>
#include <QMetaObject>
#include <utility>

namespace linux_desktop {
namespace {

using platform::NSApplicationActivationPolicy;
using platform::port::ApplicationInfo;

constexpr OtherApplications::Id kOurselves = 1;
constexpr OtherApplications::Id kOthers = 2;

}  // namespace

std::string cannotBeMinimised(std::size_t windows) {
  return std::to_string(windows) + (windows == 1 ? " window" : " windows") + " cannot be minimised";
}

std::vector<ApplicationInfo> OtherApplications::runningApplications() {
  return {{kOurselves, QGuiApplication::applicationDisplayName().toStdString(),
           NSApplicationActivationPolicy::Accessory},
          {kOthers, std::nullopt, NSApplicationActivationPolicy::Regular}};
}

bool OtherApplications::isHidden(Id application) {
  if (application != kOthers) return false;
  const auto& last = wish_ ? wish_ : underWay_;
  return last ? *last == Wish::Hide : hider_.isHiding();
}

bool OtherApplications::hide(Id application) {
  return wish(application, Wish::Hide);
}

bool OtherApplications::unhide(Id application) {
  return wish(application, Wish::Show);
}

bool OtherApplications::wish(Id application, Wish wish) {
  if (application != kOthers) return false;
  // The same once more, while it is under way, must not undo what the user did meanwhile.
  if ((wish_ ? wish_ : underWay_) == wish) return true;
  wish_ = wish;
  queueNext();
  return true;
}

void OtherApplications::queueNext() {
  QMetaObject::invokeMethod(
      &context_, [this] { carryOut(); }, Qt::QueuedConnection);
}

void OtherApplications::carryOut() {
  if (underWay_ || !wish_) return;
  underWay_ = std::exchange(wish_, std::nullopt);
  if (*underWay_ == Wish::Hide) {
    hider_.hide([this] { finished(); });
  } else {
    hider_.show([this] { finished(); });
  }
}

void OtherApplications::finished() {
  underWay_.reset();
  queueNext();
}

}  // namespace linux_desktop
