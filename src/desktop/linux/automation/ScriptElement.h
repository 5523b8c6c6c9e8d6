#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/port/Automation.h"

namespace linux_desktop {

/// One node of the tree that scripts can reach: what is in it, and what it does when it is used.
class ScriptElement final : public platform::port::ScriptObject {
 public:
  template <typename T>
  using Result = platform::port::ScriptResult<T>;
  using Error = platform::port::ScriptError;

  /// `description` stands for it in errors, as a script would write it.
  explicit ScriptElement(std::string description) : description_(std::move(description)) {}

  // --- Making the tree ---
  /// A new element, the last one of its class. It is there as long as `exists` says so, if set.
  ScriptElement& add(std::string className, std::string name, std::function<bool()> exists = {});
  /// Its property "value", to be read only.
  std::function<Result<platform::Value>()> value;
  std::function<std::optional<Error>()> onClick;

  // --- port::ScriptObject ---
  [[nodiscard]] Result<std::shared_ptr<ScriptObject>> element(
      std::string_view className, const platform::port::ElementSpecifier& which) override;
  [[nodiscard]] Result<platform::Value> property(std::string_view name) override;
  [[nodiscard]] std::optional<Error> click() override;

 private:
  struct Child {
    std::string className;
    std::string name;
    std::function<bool()> exists;
    std::shared_ptr<ScriptElement> object;
  };

  std::string description_;
  std::vector<Child> children_;
};

}  // namespace linux_desktop
