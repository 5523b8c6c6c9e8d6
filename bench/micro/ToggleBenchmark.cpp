#include <benchmark/benchmark.h>

#include "bench/SimulatedProgram.h"

namespace {

// What the program itself spends on one toggle: switch, animation, icon, mute; no service waits.
void toggleOfTheMode(benchmark::State& state) {
  bench::SimulatedProgram program;
  while (state.KeepRunning()) program.toggle();
}
BENCHMARK(toggleOfTheMode);

}  // namespace
