#pragma once

#include <unistd.h>

#include <utility>

namespace linux_desktop {

/// Owns one file descriptor and closes it.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
      reset();
      number_ = std::exchange(other.number_, -1);
    }
    return *this;
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { reset(); }

  [[nodiscard]] bool isOpen() const { return number_ >= 0; }
  [[nodiscard]] int get() const { return number_; }
  void reset() {
    if (number_ >= 0) ::close(std::exchange(number_, -1));
  }

 private:
  int number_ = -1;
};

}  // namespace linux_desktop
