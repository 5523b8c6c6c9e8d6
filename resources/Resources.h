#pragma once

#include <span>
#include <string_view>

/// The files of this folder, compiled into the program.
namespace resources {

struct File {
  /// The file's name, with its type.
  std::string_view name;
  std::string_view bytes;
};

/// All of them; they live as long as the process.
[[nodiscard]] std::span<const File> files();

}  // namespace resources
