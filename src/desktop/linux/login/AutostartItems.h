#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/port/Program.h"

namespace linux_desktop {

/// The absolute path of the file that starts this program anew, free of links: the program itself,
/// or the AppImage that it runs from. To be asked for early: who renames the file afterwards does
/// not change the answer.
[[nodiscard]] std::string ownProgramPath();

/// The user's autostart folder as the list of login items, a file an entry, oldest first. Main
/// thread only.
///
/// Entries are read anew for each call, since settings dialogs and people change them too. A new
/// one is written whole under a name that nothing has yet, so no other program's entry and no
/// earlier one of ours is ever rewritten. Each thing that goes wrong is one line on standard error.
class AutostartItems final : public platform::port::LoginItems {
 public:
  /// `folders` are the user's own, then those for all users.
  explicit AutostartItems(std::vector<std::filesystem::path> folders = standardFolders());

  /// `$XDG_CONFIG_HOME/autostart`, then the same of each of `$XDG_CONFIG_DIRS`.
  [[nodiscard]] static std::vector<std::filesystem::path> standardFolders();

  [[nodiscard]] std::optional<std::vector<platform::port::LoginItem>> items() override;
  [[nodiscard]] std::optional<std::string> resolve(const platform::port::LoginItem& item) override;
  [[nodiscard]] std::optional<platform::port::LoginItem> insert(
      std::string_view path, const std::optional<platform::port::LoginItem>& after) override;
  /// Where all users have an entry of that name, one that hides it takes the removed one's place.
  bool remove(const platform::port::LoginItem& item) override;

 private:
  [[nodiscard]] std::filesystem::path fileOf(const std::string& name) const;
  /// The first name of ours that is free; none when there are suspiciously many.
  [[nodiscard]] std::optional<std::string> freeName() const;
  [[nodiscard]] bool isThereForAllUsers(const std::string& name) const;
  void makeNewest(const std::filesystem::path& file, std::filesystem::file_time_type than) const;

  std::vector<std::filesystem::path> folders_;
  bool complained_ = false;  // that the folder cannot be read
};

}  // namespace linux_desktop
