#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/harness/Desk.h"
#include "desktop/harness/XConnection.h"

namespace harness {

/// One element as a screen reader is told of it.
struct AccessibleElement {
  std::string role;                 // "button", "check box", "toggle button", …
  std::string name;                 // what the reader says
  std::vector<std::string> states;  // "checked", "focused", "showing", …
  Rect area;                        // in root coordinates

  [[nodiscard]] bool is(std::string_view state) const;
};

/// A screen reader's view of Calmdeck on a desktop. Start the program with
/// accessibleEnvironment(); most toolkits tell nothing unless somebody listens.
class AccessibilityClient {
 public:
  explicit AccessibilityClient(const Desk& desk) : desk_(desk) {}

  [[nodiscard]] static Environment accessibleEnvironment();

  /// Every element of the program, parents first; empty when it has not registered.
  [[nodiscard]] std::vector<AccessibleElement> elements() const;
  /// The first element of this name that shows and is in that state, of that role where one is
  /// given.
  [[nodiscard]] std::optional<AccessibleElement> find(std::string_view name,
                                                      std::string_view role = {},
                                                      std::string_view state = "showing") const;
  [[nodiscard]] bool shows(std::string_view name, std::string_view role = {},
                           std::string_view state = "showing") const {
    return find(name, role, state).has_value();
  }
  /// The first control of this name that shows, once there is one; a mere label does not count.
  [[nodiscard]] std::optional<AccessibleElement> await(
      const std::string& name, std::chrono::milliseconds patience = kPatience) const;
  /// Does what the element does when it is activated, without a mouse or a key. False when there
  /// is no such element or it refuses.
  [[nodiscard]] bool act(const AccessibleElement& element) const;

 private:
  const Desk& desk_;
};

}  // namespace harness
