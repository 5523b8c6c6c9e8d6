#pragma once

#include <sys/types.h>

#include <map>

namespace bench {

/// What the kernel tells of a process. All throw std::runtime_error for one that is gone.

/// Its resident memory, and its share of it where pages are shared with others (PSS); in KiB.
[[nodiscard]] long residentKib(pid_t pid);
[[nodiscard]] long proportionalKib(pid_t pid);
/// The share once it has come to rest: several readings in a row that hardly differ.
[[nodiscard]] long settledProportionalKib(pid_t pid);

/// How often each of its threads has given up or lost the processor: a wake-up ends in one of
/// these.
using Switches = std::map<pid_t, long>;
[[nodiscard]] Switches contextSwitches(pid_t pid);
/// The wake-ups between two such readings. A thread that has ended meanwhile woke up to do so, and
/// counts as one.
[[nodiscard]] long wakeUpsBetween(const Switches& before, const Switches& after);

}  // namespace bench
