#pragma once

#include "bench/Options.h"
#include "bench/Report.h"

namespace bench {

/// The mode on and off on each Wayland compositor that is installed, beside a script.
void measureCompositors(const Options& options, Report& report);

}  // namespace bench
