#pragma once

#include <QtGlobal>
#include <string>

#include "desktop/harness/EventLoopTest.h"

/// With a session bus for this process alone, for as long as that lives: Qt opens it once, and
/// whoever runs the tests is to keep his own pictures.
class PrivateBusTest : public harness::EventLoopTest<> {
 protected:
  explicit PrivateBusTest(const char* currentDesktop) {
    static harness::Process bus(
        {.argv = {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"}});
    static const std::string address = bus.waitForLine("^unix:").value_or("");
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.c_str());
    qputenv("XDG_CURRENT_DESKTOP", currentDesktop);
  }
};
