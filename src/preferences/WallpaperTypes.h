#pragma once

#include <string>
#include <vector>

namespace preferences {

/// The file-name extensions that the wallpaper chooser accepts.
[[nodiscard]] const std::vector<std::string>& allowedWallpaperTypes();

}  // namespace preferences
