#pragma once

#include "bench/Options.h"
#include "bench/Report.h"

namespace bench {

/// Memory that stays after many toggles on a simulated desktop, in this process.
void measureToggleGrowth(const Options& options, Report& report);
/// After many image changes of a real tray item.
void measureIconGrowth(const Options& options, Report& report);
/// After many real clicks on the master switch; each of them changes the icon, too.
void measureClickGrowth(const Options& options, Report& report);

}  // namespace bench
