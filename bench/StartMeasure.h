#pragma once

#include "bench/Options.h"
#include "bench/Report.h"

namespace bench {

/// Start until the tray icon is on the screen, and idle memory; each start of Calmdeck is followed
/// by one of the smallest program with a tray icon.
void measureStart(const Options& options, Report& report);

}  // namespace bench
