#pragma once

#include "bench/Options.h"
#include "bench/Report.h"

namespace bench {

/// The two shortcuts, from the key going down until the sink is muted, the first cover is on the
/// screen and the microphone is muted; each press is followed by one for sxhkd, which runs a shell
/// script that does the same.
void measureShortcuts(const Options& options, Report& report);

}  // namespace bench
