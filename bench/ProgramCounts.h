#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "bench/counts/XCounts.h"
#include "desktop/harness/XDesk.h"

namespace bench {

/// Counts what one program asks of the X server and of the session bus.
class ProgramCounts {
 public:
  /// The desk outlives this.
  explicit ProgramCounts(harness::XDesk& desk);

  /// What the program has to be started with.
  [[nodiscard]] harness::Environment environment() const;

  struct Figures {
    double requests;
    double roundTrips;
    double busCalls;
  };
  /// Since its start, of the X requests; of the bus, since this counts. The program lives.
  [[nodiscard]] Figures of(pid_t pid);

 private:
  [[nodiscard]] double busCallsOf(pid_t pid);
  [[nodiscard]] pid_t processOf(const std::string& busName);

  struct Unmap {
    void operator()(XCounts* counts) const;
  };
  harness::XDesk& desk_;
  std::filesystem::path file_;
  std::unique_ptr<XCounts, Unmap> counts_;
  std::unique_ptr<harness::Process> monitor_;
  std::map<std::string, pid_t> processes_;  // by bus name
};

}  // namespace bench
