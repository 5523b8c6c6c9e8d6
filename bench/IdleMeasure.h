#pragma once

#include "bench/Options.h"
#include "bench/Report.h"

namespace bench {

/// Wake-ups while nothing happens and the panel is closed, with the mode off and on.
void measureIdle(const Options& options, Report& report);

}  // namespace bench
