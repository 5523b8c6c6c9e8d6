#include "support/ApplicationTest.h"

#include "app/ControllerFactory.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSBundle.h"
#include "resources/Resources.h"

namespace tests {

using namespace std::chrono_literals;

ApplicationTest::ApplicationTest() {
  prepare();
}

void ApplicationTest::prepare() {
  for (const resources::File& file : resources::files()) {
    platform::NSBundle::mainBundle().addResource(std::string(file.name), file.bytes);
  }
  app::registerClasses();
}

void ApplicationTest::launchOnly() {
  platform::NSApplicationMain();
}

void ApplicationTest::launch() {
  launchOnly();
  desk.loop.advance(500ms);
}

void ApplicationTest::relaunch() {
  end();
  desk.output.lines.clear();
  desk.log.clear();
  desk.loop.restart();
  begin();
  prepare();
  launch();
}

void ApplicationTest::click(const std::weak_ptr<platform::NSView>& control) {
  const auto view = control.lock();
  ASSERT_TRUE(view);
  desk.screen.press(*view);
  desk.screen.release(*view);
  desk.loop.settle();
}

}  // namespace tests
