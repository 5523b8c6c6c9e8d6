#include "desktop/linux/windowsystem/ToldBackdrops.h"

#include <utility>

namespace linux_desktop {

bool ToldBackdrop::isKnown() {
  if (source_ != nullptr && !std::exchange(asked_, true)) backdrop_ = source_->backdrop(monitor_);
  return backdrop_.has_value();
}

const QImage& ToldBackdrop::image() {
  if (!isKnown() || std::exchange(drawn_, true)) return image_;
  const auto image = source_->render(*backdrop_, monitor_);
  takesLong_ = !image;
  if (image && image->size() == monitor_.pixels().size()) image_ = *image;
  return image_;
}

ToldBackdrops::ToldBackdrops(const MonitorScreens& screens) : screens_(screens) {
  learning_.setSingleShot(true);
  QObject::connect(&learning_, &QTimer::timeout, &learning_, [this] { learn(); });
}

ToldBackdrops::~ToldBackdrops() {
  follow({});
}

void ToldBackdrops::setSource(BackdropSource* source) {
  if (source_ != nullptr) source_->setChanged({});
  source_ = source;
  last_.clear();
  watch();
}

void ToldBackdrops::follow(std::function<void(const std::vector<Monitor>& others)> changed) {
  changed_ = std::move(changed);
  watch();
}

void ToldBackdrops::watch() {
  learning_.stop();
  if (source_ == nullptr) return;
  source_->setChanged(changed_ ? [this] { told(); } : std::function<void()>());
  if (changed_) learning_.start(0);
}

void ToldBackdrops::learn() {
  for (const Monitor& monitor : screens_.monitors()) {
    if (!last_.contains(monitor.name)) last_.emplace(monitor.name, source_->backdrop(monitor));
  }
}

void ToldBackdrops::lookAgain() {
  if (source_ != nullptr && changed_) told();
}

void ToldBackdrops::told() {
  std::vector<Monitor> others;
  for (const Monitor& monitor : screens_.monitors()) {
    const auto backdrop = source_->backdrop(monitor);
    const auto last = last_.find(monitor.name);
    if (last != last_.end() && last->second == backdrop) continue;
    last_.insert_or_assign(monitor.name, backdrop);
    others.push_back(monitor);
  }
  changed_(others);
}

}  // namespace linux_desktop
