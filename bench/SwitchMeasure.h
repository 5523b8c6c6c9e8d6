#pragma once

#include "bench/Options.h"
#include "bench/Report.h"

namespace bench {

/// A real click on the master switch until the sink is seen muted; after each, one bare call.
void measureSwitch(const Options& options, Report& report);

}  // namespace bench
