#pragma once

#include <QSocketNotifier>
#include <functional>
#include <string>

#include "desktop/harness/LineCapture.h"

namespace probe {

/// Lines that a test writes into a fifo, for a program that stands in for ours. Needs the event
/// loop of the application object.
class OrderFifo {
 public:
  /// Opens the fifo, for writing too, so that the end of one writer is not the end of the input.
  OrderFifo(const char* path, std::function<void(const std::string& line)> obey);
  OrderFifo(const OrderFifo&) = delete;
  OrderFifo& operator=(const OrderFifo&) = delete;

 private:
  void read();

  harness::FileDescriptor fifo_;
  std::function<void(const std::string& line)> obey_;
  std::string line_;
  QSocketNotifier notifier_;
};

/// Prints a line at once.
void say(const std::string& line);

}  // namespace probe
