#include "desktop/wayland/OrderFifo.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

namespace probe {

OrderFifo::OrderFifo(const char* path, std::function<void(const std::string& line)> obey)
    : fifo_(::open(path, O_RDWR | O_NONBLOCK | O_CLOEXEC)),
      obey_(std::move(obey)),
      notifier_(fifo_.get(), QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
}

void OrderFifo::read() {
  char byte = 0;
  while (::read(fifo_.get(), &byte, 1) == 1) {
    if (byte == '\n')
      obey_(std::exchange(line_, {}));
    else
      line_ += byte;
  }
}

void say(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

}  // namespace probe
