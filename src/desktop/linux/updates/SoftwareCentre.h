#pragma once

namespace linux_desktop {

/// Whether some program of this desktop shows the pages of the system's software.
[[nodiscard]] bool hasSoftwareCentre();

/// Opens Calmdeck's page there. Returns at once; a failure is one line on standard error.
void openSoftwareCentre();

}  // namespace linux_desktop
