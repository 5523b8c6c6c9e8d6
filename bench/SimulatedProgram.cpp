#include "bench/SimulatedProgram.h"

#include "app/ControllerFactory.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSBundle.h"
#include "resources/Resources.h"

namespace bench {

using namespace std::chrono_literals;

SimulatedProgram::SimulatedProgram()
    : runtime_(std::make_unique<platform::Runtime>(desk_.desktop)) {
  for (const resources::File& file : resources::files())
    platform::NSBundle::mainBundle().addResource(std::string(file.name), file.bytes);
  app::registerClasses();
  platform::NSApplicationMain();
  desk_.loop.advance(1s);
  const auto speaker = app::sharedViewController()->toggleButtonTurnOffSpeaker.lock();
  desk_.screen.press(*speaker);
  desk_.screen.release(*speaker);
  desk_.loop.advance(1s);
}

SimulatedProgram::~SimulatedProgram() = default;

void SimulatedProgram::toggle() {
  press();
  release();
  pass(1s);
  forgetWhatWasSaid();
}

void SimulatedProgram::press() {
  desk_.screen.press(masterSwitch());
}

void SimulatedProgram::release() {
  desk_.screen.release(masterSwitch());
}

platform::NSView& SimulatedProgram::masterSwitch() {
  return *app::sharedViewController()->toggleButtonPresentationMode.lock();
}

// The simulated desktop remembers everything, which must not count as the program's.
void SimulatedProgram::forgetWhatWasSaid() {
  desk_.log.clear();
  desk_.output.lines.clear();
}

}  // namespace bench
