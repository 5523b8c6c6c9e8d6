#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/NSObject.h"

namespace platform {

/// The application as a thing that was installed: its resources, which are compiled in.
class NSBundle final : public NSObject {
 public:
  [[nodiscard]] static NSBundle& mainBundle();

  /// Where the application is: what a desktop starts in order to start the application.
  [[nodiscard]] std::string bundlePath() const;

  /// `bytes` outlive the process's use of them. Called by whoever makes the Runtime.
  void addResource(std::string fileName, std::string_view bytes);
  /// The bytes of the resource file `name`.`type`, if there is one.
  [[nodiscard]] std::optional<std::string_view> resource(std::string_view name,
                                                         std::string_view type) const;

 private:
  std::map<std::string, std::string_view, std::less<>> resources_;
};

/// `text` in the language of the user, itself where nobody can tell. Texts are looked up by what
/// they are in English.
[[nodiscard]] std::string NSLocalizedString(std::string_view text);
/// The same of a text in which "%s" stands for `argument`.
[[nodiscard]] std::string NSLocalizedFormat(std::string_view text, const std::string& argument);

}  // namespace platform
