#pragma once

#include <memory>

#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/Runtime.h"

namespace bench {

/// The whole program on a simulated desktop, its panel open and the speaker chosen.
class SimulatedProgram {
 public:
  SimulatedProgram();
  ~SimulatedProgram();
  SimulatedProgram(const SimulatedProgram&) = delete;
  SimulatedProgram& operator=(const SimulatedProgram&) = delete;

  /// A click on the master switch and all that follows, its animation too.
  void toggle();
  [[nodiscard]] platform::NSView& masterSwitch();
  [[nodiscard]] platform::MonotonicTime now() const { return desk_.loop.now(); }
  void pass(platform::Duration time) { desk_.loop.advance(time); }
  void press();
  void release();

 private:
  void forgetWhatWasSaid();

  simulated::SimulatedDesktop desk_;
  std::unique_ptr<platform::Runtime> runtime_;
};

}  // namespace bench
