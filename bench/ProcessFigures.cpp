#include "bench/ProcessFigures.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

namespace bench {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

fs::path folderOf(pid_t pid) {
  return fs::path("/proc") / std::to_string(pid);
}

// The sum of the numbers behind `name` in files of lines "name: number".
long sumOf(std::string_view name, const fs::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  long sum = 0;
  for (std::string word; file >> word;) {
    long number = 0;
    if (word == name && file >> number) sum += number;
  }
  return sum;
}

}  // namespace

long residentKib(pid_t pid) {
  return sumOf("Rss:", folderOf(pid) / "smaps_rollup");
}

long proportionalKib(pid_t pid) {
  return sumOf("Pss:", folderOf(pid) / "smaps_rollup");
}

long settledProportionalKib(pid_t pid) {
  constexpr int kEqualReadings = 4;
  constexpr int kMostReadings = 40;
  constexpr long kHardlyKib = 64;
  long last = proportionalKib(pid);
  for (int equal = 1, all = 1; equal < kEqualReadings && all < kMostReadings; ++all) {
    std::this_thread::sleep_for(250ms);
    const long now = proportionalKib(pid);
    equal = std::abs(now - last) <= kHardlyKib ? equal + 1 : 1;
    last = now;
  }
  return last;
}

Switches contextSwitches(pid_t pid) {
  Switches switches;
  for (const fs::directory_entry& thread : fs::directory_iterator(folderOf(pid) / "task")) {
    const fs::path status = thread.path() / "status";
    switches[std::stoi(thread.path().filename())] =
        sumOf("voluntary_ctxt_switches:", status) + sumOf("nonvoluntary_ctxt_switches:", status);
  }
  return switches;
}

long wakeUpsBetween(const Switches& before, const Switches& after) {
  long sum = 0;
  for (const auto& [thread, count] : after)
    sum += count - (before.contains(thread) ? before.at(thread) : 0);
  for (const auto& [thread, count] : before) sum += after.contains(thread) ? 0 : 1;
  return sum;
}

}  // namespace bench
