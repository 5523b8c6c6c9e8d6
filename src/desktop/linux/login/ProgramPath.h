#pragma once

#include <string>

namespace linux_desktop {

/// The absolute path of the file that starts this program anew, free of links: the program itself,
/// or the AppImage that it runs from. To be asked for early: who renames the file afterwards does
/// not change the answer.
[[nodiscard]] std::string ownProgramPath();

}  // namespace linux_desktop
