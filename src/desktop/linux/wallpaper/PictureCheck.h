#pragma once

#include <QString>
#include <optional>
#include <string>

namespace linux_desktop {

/// Why no desktop can be told to show that file, in one line: most of them draw a bare colour then,
/// and say nothing. None when it can: a readable picture of a common format, no larger than a
/// hundred million pixels, whose path settings files can hold.
[[nodiscard]] std::optional<std::string> pictureFault(const QString& path);

}  // namespace linux_desktop
