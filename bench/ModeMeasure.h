#pragma once

#include "bench/Options.h"
#include "bench/Report.h"

namespace bench {

/// The mode with all of its features, on and off, until the last effect is seen; each toggle is
/// followed by one of a shell script that does the same. Then what a toggle asks of the X server
/// and the bus, and the server's memory.
void measureMode(const Options& options, Report& report);

/// The mode with the icons alone, until the covers are seen: the first of a process, and further
/// ones.
void measureCovers(const Options& options, Report& report);

}  // namespace bench
