#include "desktop/linux/wayland/ShmPicture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "desktop/linux/files/FileDescriptor.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// Memory that can be handed to the compositor; mapped for as long as the object lives.
struct SharedMemory {
  explicit SharedMemory(std::size_t length)
      : file(::memfd_create("calmdeck-picture", MFD_CLOEXEC)), size(length) {
    if (!file.isOpen() || ::ftruncate(file.get(), static_cast<off_t>(size)) != 0) return;
    void* const mapped = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (mapped != MAP_FAILED) bytes = static_cast<uchar*>(mapped);
  }
  ~SharedMemory() {
    if (bytes != nullptr) ::munmap(bytes, size);
  }
  SharedMemory(const SharedMemory&) = delete;
  SharedMemory& operator=(const SharedMemory&) = delete;

  FileDescriptor file;
  std::size_t size;
  uchar* bytes = nullptr;
};

}  // namespace

std::shared_ptr<const ShmPicture> ShmPicture::make(wl_shm& shm, const QImage& image) {
  return hold(shm, image.convertToFormat(QImage::Format_RGB32), WL_SHM_FORMAT_XRGB8888);
}

std::shared_ptr<const ShmPicture> ShmPicture::clear(wl_shm& shm) {
  QImage pixel(1, 1, QImage::Format_ARGB32_Premultiplied);
  pixel.fill(Qt::transparent);
  return hold(shm, pixel, WL_SHM_FORMAT_ARGB8888);
}

std::shared_ptr<const ShmPicture> ShmPicture::hold(wl_shm& shm, const QImage& image,
                                                   wl_shm_format format) {
  auto memory = std::make_unique<SharedMemory>(static_cast<std::size_t>(image.sizeInBytes()));
  if (memory->bytes == nullptr) {
    qCWarning(lcWayland, "no memory for a picture: %s", std::strerror(errno));
    return nullptr;
  }
  std::memcpy(memory->bytes, image.constBits(), memory->size);
  const int stride = static_cast<int>(image.bytesPerLine());
  const WaylandProxy<wl_shm_pool> pool(
      wl_shm_create_pool(&shm, memory->file.get(), static_cast<int>(memory->size)));
  WaylandProxy<wl_buffer> buffer(
      wl_shm_pool_create_buffer(pool.get(), 0, image.width(), image.height(), stride, format));
  // The compositor has the file now.
  memory->file.reset();
  const uchar* const bytes = memory->bytes;
  const QImage held(
      bytes, image.width(), image.height(), stride, image.format(),
      [](void* mapped) { delete static_cast<SharedMemory*>(mapped); }, memory.release());
  return std::shared_ptr<const ShmPicture>(new ShmPicture(held, std::move(buffer)));
}

ShmPictures::ShmPictures(WaylandConnection& connection, const MonitorScreens& screens)
    : shm_(connection.bindFirst<wl_shm>(wl_shm_interface, 1)), backdrops_(screens) {}

QImage ShmPictures::drawn(const Monitor& monitor) const {
  ToldBackdrop told = backdrops_.on(monitor);
  // A cover of nothing could hide a panel that stands in the covers' own layer.
  if (!told.mayHaveIcons()) return {};
  const QImage& image = told.image();
  if (!image.isNull()) return image.convertToFormat(QImage::Format_RGB32);
  if (told.takesLong()) return {};
  // A desktop that is starting anew does not answer yet: its covers keep the picture before.
  if (const auto before = shown_.find(monitor.name);
      before != shown_.end() && !before->second.expired())
    return {};
  QImage plain(monitor.pixels().size(), QImage::Format_RGB32);
  plain.fill(Qt::black);
  return plain;
}

std::shared_ptr<const HeldPicture> ShmPictures::picture(const Monitor& monitor) {
  const QImage image = drawn(monitor);
  if (image.isNull() || !shm_) return nullptr;
  auto picture = held(image);
  if (picture) shown_.insert_or_assign(monitor.name, picture);
  return picture;
}

std::shared_ptr<const ShmPicture> ShmPictures::held(const QImage& image) {
  for (const auto& [monitor, shown] : shown_) {
    if (auto picture = shown.lock(); picture && picture->isLike(image)) return picture;
  }
  return ShmPicture::make(*shm_, image);
}

void ShmPictures::follow(std::function<void()> changed) {
  if (!changed) return backdrops_.follow({});
  backdrops_.follow([changed = std::move(changed)](const std::vector<Monitor>&) { changed(); });
}

}  // namespace linux_desktop
