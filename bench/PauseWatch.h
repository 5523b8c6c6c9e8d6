#pragma once

#include <gio/gio.h>

#include <memory>

namespace bench {

/// Asks dunst over the bus whether it keeps its peace, over a connection that is open already.
class PauseWatch {
 public:
  /// The bus is the one that this process's environment names. Throws std::runtime_error when it
  /// cannot be reached.
  PauseWatch();

  /// Throws std::runtime_error when dunst does not say.
  [[nodiscard]] bool isPaused() const;

 private:
  struct Release {
    void operator()(GDBusConnection* connection) const;
  };
  std::unique_ptr<GDBusConnection, Release> connection_;
};

}  // namespace bench
