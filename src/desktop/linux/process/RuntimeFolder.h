#pragma once

#include <filesystem>
#include <optional>

namespace linux_desktop {

/// The folder for what only running processes of this user share: `$XDG_RUNTIME_DIR`, or, where
/// that is not set or not ours alone, `calmdeck` in the user's cache folder, made with mode 0700.
/// Absent when neither can be had.
[[nodiscard]] std::optional<std::filesystem::path> runtimeFolder();

}  // namespace linux_desktop
