#pragma once

#include <memory>
#include <typeindex>
#include <utility>
#include <vector>

#include "platform/Desktop.h"

namespace platform {

/// The process-wide single instances, on one desktop.
///
/// Exactly one Runtime is current at a time: `main` makes one for the life of the process, a test
/// fixture one for each test. Making a second while one lives is a programming error. Destroying it
/// drops the instances, the youngest first; the desktop must still be alive then. Main thread only.
class Runtime {
 public:
  explicit Runtime(const Desktop& desktop);
  ~Runtime();
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  /// The current one; having none is a programming error.
  [[nodiscard]] static Runtime& current();

  [[nodiscard]] const Desktop& desktop() const { return desktop_; }

  /// The single instance of T, made by its default constructor on first use.
  template <typename T>
  [[nodiscard]] std::shared_ptr<T> instance() {
    const std::type_index type = typeid(T);
    for (const auto& [known, instance] : instances_) {
      if (known == type) return std::static_pointer_cast<T>(instance);
    }
    auto made = std::make_shared<T>();
    instances_.emplace_back(type, made);
    return made;
  }

 private:
  const Desktop& desktop_;
  /// A dozen, the oldest first.
  std::vector<std::pair<std::type_index, std::shared_ptr<void>>> instances_;
};

}  // namespace platform
