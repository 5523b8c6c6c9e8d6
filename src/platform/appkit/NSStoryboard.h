#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSObject.h"

namespace platform {

/// An interface description: scenes, each a view controller with its tree of views, on its own or
/// in a window, connected by name. docs/storyboard.md tells how one is written. It is compiled into
/// the program, so whatever is wrong with it is a programming error; `problems` finds all of that
/// ahead of time.
class NSStoryboard final : public NSObject {
 public:
  /// The resource `name`.storyboard of `bundle`, of the main bundle when that is null.
  [[nodiscard]] static std::shared_ptr<NSStoryboard> storyboardWithName(std::string_view name,
                                                                        NSBundle* bundle);
  explicit NSStoryboard(std::string_view text);
  ~NSStoryboard() override;

  /// A new controller of the scene: an NSViewController or an NSWindowController. Its view or its
  /// window loads when it is first asked for.
  [[nodiscard]] std::shared_ptr<NSObject> instantiateControllerWithIdentifier(
      std::string_view identifier);
  /// A new object of the class that the description names as the application's delegate.
  [[nodiscard]] std::shared_ptr<NSObject> instantiateApplicationDelegate();

  /// Builds every scene with its views and tells what is wrong, a line each.
  [[nodiscard]] std::vector<std::string> problems();

 private:
  struct Document;
  // Controllers whose views are not loaded yet share it.
  std::shared_ptr<const Document> document_;
};

}  // namespace platform
