#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace linux_desktop {

// The text of a desktop entry that starts a program at login.

/// The absolute path of the program that an entry's Exec line starts, free of links; none when the
/// text is no entry of an application or its program cannot be found. An entry that is switched off
/// counts, and so does one whose TryExec is not there.
[[nodiscard]] std::optional<std::string> programOfEntry(std::string_view text);

/// Why no entry can start the program at `path`: launchers disagree on what some characters in a
/// path mean. None when all of them start it.
[[nodiscard]] std::optional<std::string> whatForbidsEntry(std::string_view path);

/// An entry for the program at this absolute path, which nothing forbids.
[[nodiscard]] std::string entryFor(std::string_view path);

/// An entry that starts nothing, and hides one of the same name that is there for all users.
[[nodiscard]] std::string entryForNothing();

}  // namespace linux_desktop
