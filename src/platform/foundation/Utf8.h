#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Whether `text` is well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
[[nodiscard]] bool isUtf8(std::string_view text);

/// The UTF-16 units of `text`. Each byte that belongs to no well-formed character counts as one
/// unit, U+FFFD.
[[nodiscard]] std::u16string utf16FromUtf8(std::string_view text);

/// `text` with small letters for the capitals A to Z.
[[nodiscard]] std::string lowercaseString(std::string_view text);

}  // namespace platform
