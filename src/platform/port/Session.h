#pragma once

namespace platform::port {

/// What the desktop session tells the application as a whole.
class SessionClient {
 public:
  virtual ~SessionClient() = default;
  /// The user started the program again while it runs: show something.
  virtual void applicationShouldReopen() = 0;
};

class Session {
 public:
  virtual ~Session() = default;
  /// `client` is told from now on; null: nobody is. The client must outlive its being set.
  virtual void setClient(SessionClient* client) = 0;
};

}  // namespace platform::port
