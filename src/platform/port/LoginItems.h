#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::port {

/// One entry of the list of programs that the desktop starts at login. A handle: the entry may be
/// gone when it is used. Equal when it is the same entry.
struct LoginItem {
  std::string identifier;
  bool operator==(const LoginItem&) const = default;
};

/// The programs that the desktop starts at login. Main thread only; may touch the file system.
class LoginItems {
 public:
  virtual ~LoginItems() = default;

  /// The entries in the order of the list, oldest first; none when the list cannot be had. An entry
  /// that is there and switched off counts.
  [[nodiscard]] virtual std::optional<std::vector<LoginItem>> items() = 0;
  /// The absolute path of the program that the entry starts; none when it cannot be told.
  [[nodiscard]] virtual std::optional<std::string> resolve(const LoginItem& item) = 0;
  /// Adds an entry for the program at this absolute path after `after`, or in front of all where
  /// that is none. A desktop whose list has an order of its own puts it last. None when the entry
  /// cannot be made, after one clear line.
  [[nodiscard]] virtual std::optional<LoginItem> insert(std::string_view path,
                                                        const std::optional<LoginItem>& after) = 0;
  /// False when it is not there or cannot be removed.
  virtual bool remove(const LoginItem& item) = 0;
};

}  // namespace platform::port
