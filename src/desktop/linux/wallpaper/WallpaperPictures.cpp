#include "desktop/linux/wallpaper/WallpaperPictures.h"

#include <QPromise>
#include <QSemaphore>
#include <QThreadPool>
#include <algorithm>
#include <chrono>
#include <utility>

#include "desktop/linux/log/Log.h"
#include "desktop/linux/wallpaper/PictureReader.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;
using platform::port::ScreenId;

// Below a file that is not a folder, so that no picture can ever have such a path.
constexpr const char* kReservedFolder = "/dev/null/desktop-picture/";

bool isReserved(const std::string& path) {
  return path.starts_with(kReservedFolder);
}

/// A picture that was set is wanted again for the covers, a second later and maybe after a picture
/// that takes long.
constexpr std::chrono::seconds kKept{5};

/// Has `work` done beside the main thread, and waits for so many milliseconds.
template <class Result>
QFuture<Result> doBeside(std::function<Result()> work, int patience) {
  const auto promise = std::make_shared<QPromise<Result>>();
  const auto done = std::make_shared<QSemaphore>();
  promise->start();
  QThreadPool::globalInstance()->start([promise, done, work = std::move(work)] {
    promise->addResult(work());
    promise->finish();
    done->release();
  });
  if (patience > 0) static_cast<void>(done->tryAcquire(1, patience));
  return promise->future();
}

}  // namespace

WallpaperPictures::WallpaperPictures(DesktopFacts& facts)
    : facts_(facts),
      choice_(facts),
      gathering_(std::chrono::milliseconds(0),
                 [this] {
                   if (changed_) changed_();
                 }),
      forgetting_(kKept, [this] { forget(); }) {}

std::optional<Monitor> WallpaperPictures::monitorNamed(const ScreenId& screen) const {
  const std::vector<Monitor> monitors = facts_.monitors();
  const auto found = std::ranges::find(monitors, QString::fromStdString(screen), &Monitor::name);
  return found == monitors.end() ? std::nullopt : std::optional(*found);
}

std::optional<std::string> WallpaperPictures::path(const ScreenId& screen) {
  const auto monitor = monitorNamed(screen);
  const auto [row, adapter] = choice_.current();
  if (!monitor || adapter == nullptr) return std::nullopt;
  auto state = adapter->state(*monitor);
  if (!state) return std::nullopt;
  std::string path = state->file.isEmpty() ? kReservedFolder + screen : state->file.toStdString();
  told_.insert_or_assign(screen, Told{path, *monitor, row, std::move(state->kept), {}});
  return path;
}

std::optional<Dictionary> WallpaperPictures::options(const ScreenId& screen) {
  const auto monitor = monitorNamed(screen);
  WallpaperAdapter* adapter = choice_.current().adapter;
  if (!monitor || adapter == nullptr) return std::nullopt;
  return adapter->options(*monitor);
}

Fault WallpaperPictures::set(const std::string& path, const ScreenId& screen,
                             const Dictionary& options) {
  awaited_.erase(screen);
  const auto told = told_.find(screen);
  const bool isTold = told != told_.end() && told->second.path == path;
  auto reason = isTold ? putBack(told->second, options) : show(path, screen, options);
  if (reason) {
    complain(*reason);
  } else if (changed_) {
    gathering_.start();
  }
  return reason;
}

void WallpaperPictures::complain(const std::string& reason) {
  if (reason == complaint_) return;
  complaint_ = reason;
  qCWarning(lcWallpaper, "%s", reason.c_str());
  QMetaObject::invokeMethod(
      &gathering_, [this] { complaint_.clear(); }, Qt::QueuedConnection);
}

Fault WallpaperPictures::putBack(const Told& told, const Dictionary& options) {
  const auto [row, adapter] = choice_.current();
  if (adapter == nullptr || row != told.desktop) {
    if (!isReserved(told.path)) return show(told.path, told.monitor.name.toStdString(), options);
    return std::string(told.desktop->name) + " no longer draws the desktop.";
  }
  Dictionary state = told.state;
  for (const auto& [key, value] : options) {
    const auto ours = told.changed.find(key);
    if (ours == told.changed.end() || ours->second != value) state.insert_or_assign(key, value);
  }
  return adapter->restore(told.monitor, state);
}

Fault WallpaperPictures::show(const std::string& path, const ScreenId& screen,
                              const Dictionary& options) {
  const auto monitor = monitorNamed(screen);
  if (!monitor) return "There is no screen " + screen + ".";
  WallpaperAdapter* adapter = choice_.current().adapter;
  if (adapter == nullptr) return "Nobody is known here whose picture could be set.";
  const QString file = QString::fromStdString(path);
  if (auto fault = pictureFault(file)) return fault;
  const QSize shown = layout().desktop.size();
  const PictureReading reading{file, adapter->manner().turnsUpright, shown};
  const QFuture<Fault> read =
      doBeside<Fault>([reading] { return decodingFault(reading); }, patience());
  forgetting_.start();
  if (!read.isFinished()) {
    await(screen, read, [this, screen, file, options] { return give(screen, file, options); });
    return std::nullopt;
  }
  auto fault = read.result();
  return fault ? fault : give(screen, file, options);
}

int WallpaperPictures::patience() const {
  // One that takes long is not waited for twice.
  return awaited_.empty() && drawings_.empty() ? longestReading_ : 0;
}

void WallpaperPictures::await(const ScreenId& screen, const QFuture<Fault>& read,
                              std::function<Fault()> give) {
  auto& awaited = awaited_[screen];
  awaited = std::make_unique<QFutureWatcher<Fault>>();
  const auto act = [this, screen, give = std::move(give)] {
    auto watcher = std::move(awaited_.extract(screen).mapped());
    Fault fault = watcher->result();
    watcher.release()->deleteLater();  // it is the one that calls
    if (!fault) fault = give();
    if (fault) qCWarning(lcWallpaper, "%s", fault->c_str());
    if (!fault && changed_) gathering_.start();
  };
  QObject::connect(awaited.get(), &QFutureWatcherBase::finished, &gathering_, act);
  awaited->setFuture(read);
}

Fault WallpaperPictures::give(const ScreenId& screen, const QString& file,
                              const Dictionary& options) {
  const auto monitor = monitorNamed(screen);
  WallpaperAdapter* adapter = choice_.current().adapter;
  if (!monitor || adapter == nullptr) return "The desktop has gone.";
  if (auto reason = adapter->show(*monitor, file, options)) return reason;
  const auto told = told_.find(screen);
  if (told == told_.end()) return std::nullopt;
  for (const auto& [key, value] : adapter->options(*monitor).value_or(Dictionary())) {
    const auto given = options.find(key);
    if (given == options.end() || given->second != value)
      told->second.changed.insert_or_assign(key, value);
  }
  return std::nullopt;
}

bool WallpaperPictures::mayHaveIcons() {
  const WallpaperAdapter* adapter = choice_.current().adapter;
  return adapter != nullptr && adapter->mayHaveIcons();
}

std::optional<Backdrop> WallpaperPictures::backdrop(const Monitor& monitor) {
  WallpaperAdapter* adapter = choice_.current().adapter;
  return adapter == nullptr ? std::nullopt : adapter->backdrop(monitor);
}

BackdropLayout WallpaperPictures::layout() {
  BackdropLayout layout;
  for (const Monitor& each : facts_.monitors()) {
    layout.desktop |= each.pixels();
    layout.lastMonitor = each.pixels().size();
  }
  if (const WallpaperAdapter* adapter = choice_.current().adapter)
    layout.manner = adapter->manner();
  return layout;
}

std::optional<QImage> WallpaperPictures::render(const Backdrop& backdrop, const Monitor& monitor) {
  const Drawing::Subject subject{backdrop, monitor, layout()};
  if (backdrop.file.isEmpty()) return renderBackdrop(backdrop, monitor, subject.layout);
  const int patience = this->patience();
  auto& drawing = drawings_[monitor.name];
  if (!drawing || drawing->subject != subject) {
    drawing = std::make_unique<Drawing>(subject);
    QObject::connect(&drawing->image, &QFutureWatcherBase::finished, &gathering_, [this] {
      if (changed_) gathering_.start();
    });
    drawing->image.setFuture(doBeside<QImage>(
        [subject] { return renderBackdrop(subject.backdrop, subject.monitor, subject.layout); },
        patience));
  }
  forgetting_.start();
  if (!drawing->image.future().isFinished()) return std::nullopt;
  QImage image = drawing->image.future().result();
  drawings_.erase(monitor.name);
  return image;
}

void WallpaperPictures::forget() {
  const bool forgotten = forgetPictures();
  std::erase_if(drawings_, [](const auto& entry) { return entry.second->image.isFinished(); });
  if (!forgotten || !drawings_.empty()) forgetting_.start();
}

void WallpaperPictures::setChanged(std::function<void()> changed) {
  changed_ = std::move(changed);
  if (!changed_) {
    gathering_.stop();
    choice_.setChanged({});
  } else {
    choice_.setChanged([this] { gathering_.start(); });
  }
}

}  // namespace linux_desktop
