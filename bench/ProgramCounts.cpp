#include "bench/ProgramCounts.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <sstream>
#include <stdexcept>

#include "desktop/harness/Process.h"

namespace bench {

void ProgramCounts::Unmap::operator()(XCounts* counts) const {
  ::munmap(counts, sizeof *counts);
}

ProgramCounts::ProgramCounts(harness::XDesk& desk)
    : desk_(desk), file_(desk.home().home() / "x-counts") {
  const harness::FileDescriptor file(::open(file_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  void* memory =
      ::ftruncate(file.get(), sizeof(XCounts)) != 0
          ? MAP_FAILED
          : ::mmap(nullptr, sizeof(XCounts), PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
  if (memory == MAP_FAILED) throw std::runtime_error("no memory to count in");
  counts_.reset(static_cast<XCounts*>(memory));
  monitor_ = desk_.start({"dbus-monitor", "--session", "--profile"});
  if (!monitor_->waitForLine("NameLost")) throw std::runtime_error("dbus-monitor says nothing");
}

harness::Environment ProgramCounts::environment() const {
  return {{"LD_PRELOAD", BENCH_COUNTS}, {XCounts::kFileVariable, file_.string()}};
}

ProgramCounts::Figures ProgramCounts::of(pid_t pid) {
  return {static_cast<double>(counts_->requests), static_cast<double>(counts_->roundTrips),
          busCallsOf(pid)};
}

double ProgramCounts::busCallsOf(pid_t pid) {
  double calls = 0;
  std::istringstream lines(monitor_->output());
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string kind;
    std::string time;
    std::string serial;
    std::string sender;
    words >> kind >> time >> serial >> sender;
    if (kind == "mc" && processOf(sender) == pid) ++calls;
  }
  return calls;
}

pid_t ProgramCounts::processOf(const std::string& busName) {
  const auto [known, isNew] = processes_.emplace(busName, 0);
  if (!isNew) return known->second;
  const auto reply =
      desk_.bus().call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                       "org.freedesktop.DBus.GetConnectionUnixProcessID", {"string:" + busName});
  // As "uint32 1234"; no answer for one that is gone.
  const std::size_t at = reply ? reply->rfind(' ') : std::string::npos;
  if (at != std::string::npos) known->second = std::stoi(reply->substr(at));
  return known->second;
}

}  // namespace bench
