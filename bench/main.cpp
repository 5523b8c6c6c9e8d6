#include <exception>
#include <iostream>

#include "bench/CompositorMeasure.h"
#include "bench/GrowthMeasure.h"
#include "bench/IdleMeasure.h"
#include "bench/ModeMeasure.h"
#include "bench/Options.h"
#include "bench/Report.h"
#include "bench/ShortcutMeasure.h"
#include "bench/StartMeasure.h"
#include "bench/SwitchMeasure.h"

/// calmdeck-bench: measures what Calmdeck promises on private desktops, and prints one table.
int main(int argc, char** argv) {
  try {
    const bench::Options options = bench::optionsOf(argc, argv);
    const struct {
      bool wanted;
      void (*measure)(const bench::Options&, bench::Report&);
    } measures[] = {
        {options.toggles > 0, bench::measureToggleGrowth},
        {options.starts > 0, bench::measureStart},
        {options.switches > 0, bench::measureSwitch},
        {options.idle.count() > 0, bench::measureIdle},
        {options.icons > 0, bench::measureIconGrowth},
        {options.clicks > 0, bench::measureClickGrowth},
        {options.shortcuts > 0, bench::measureShortcuts},
        {options.modes > 0, bench::measureMode},
        {options.modes > 0, bench::measureCovers},
        {options.compositors > 0, bench::measureCompositors},
    };
    bench::Report report;
    int status = 0;
    for (const auto& [wanted, measure] : measures) {
      if (!wanted) continue;
      // What fails leaves the others, and what it had measured itself.
      try {
        measure(options, report);
        std::cerr << '.' << std::flush;
      } catch (const std::exception& error) {
        std::cerr << "\nA measure failed: " << error.what() << '\n';
        status = 1;
      }
    }
    std::cerr << '\n';
    std::cout << report.text();
    return status;
  } catch (const std::exception& error) {
    std::cerr << "The benchmark failed: " << error.what() << '\n';
  }
  return 1;
}
