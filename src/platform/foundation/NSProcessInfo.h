#pragma once

namespace platform {

/// Whether the running system is at least that version. It is the system that counts, not the one
/// the program was built for.
[[nodiscard]] bool isOperatingSystemAtLeastVersion(int major, int minor, int patch);

}  // namespace platform
