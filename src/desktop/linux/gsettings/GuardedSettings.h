#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace linux_desktop {

/// One GSettings schema, asked only for what it has: GLib ends the process over a schema or a key
/// that is not installed. Main thread only.
class GuardedSettings {
 public:
  /// Null where the schema is not installed or lacks one of `keys`, or where settings are kept in
  /// memory only and a change would reach nobody. No other key may be asked for later. `path` for
  /// schemas that have none of their own, and for no others; null where it is no path.
  [[nodiscard]] static std::unique_ptr<GuardedSettings> open(const std::string& schema,
                                                             std::vector<std::string> keys,
                                                             const std::string& path = {});
  /// The keys that a schema has; none where it is not installed.
  [[nodiscard]] static std::vector<std::string> keysOf(const std::string& schema);
  ~GuardedSettings();
  GuardedSettings(const GuardedSettings&) = delete;
  GuardedSettings& operator=(const GuardedSettings&) = delete;

  /// The value in force, the user's or the default. None when the key is of another type.
  [[nodiscard]] std::optional<std::string> text(const std::string& key) const;
  [[nodiscard]] std::optional<bool> flag(const std::string& key) const;
  [[nodiscard]] std::optional<std::vector<std::string>> list(const std::string& key) const;

  /// What the user has set, as GLib prints a value with its type; none while the default is in
  /// force. `setUserValue` puts it back byte for byte, and none makes the key unset again.
  [[nodiscard]] std::optional<std::string> userValue(const std::string& key) const;

  /// A text in that form; none where it is not UTF-8.
  [[nodiscard]] static std::optional<std::string> printed(const std::string& text);

  /// Each is refused, with false and without effect, where the key is locked or of another type. A
  /// change is under way when they return; `flush` says whether it got there.
  [[nodiscard]] bool setText(const std::string& key, const std::string& value);
  [[nodiscard]] bool setFlag(const std::string& key, bool value);
  [[nodiscard]] bool setList(const std::string& key, const std::vector<std::string>& value);
  [[nodiscard]] bool setUserValue(const std::string& key, const std::optional<std::string>& value);

  /// Waits for what was set to be stored, half a second at most. On false it may still be stored
  /// later.
  [[nodiscard]] static bool flush();

  /// `changed` is called with the key when its value became another, by us or by anybody; empty:
  /// nobody watches. Needs Qt's dispatcher to be the one of GLib, as it is by default.
  void setChanged(std::function<void(const std::string& key)> changed);

 private:
  struct Glib;
  explicit GuardedSettings(std::unique_ptr<Glib> glib, std::vector<std::string> keys);
  void require(const std::string& key) const;

  std::unique_ptr<Glib> glib_;
  std::vector<std::string> keys_;
};

}  // namespace linux_desktop
