#pragma once

namespace platform::port {

class SpacesClient {
 public:
  virtual ~SpacesClient() = default;
  /// The user went to another space (workspace), or the desktop picture of the present one is
  /// another now. Changes that follow each other at once are told once.
  virtual void activeSpaceDidChange() = 0;
};

/// The spaces that the user switches between. Absent where the desktop does not tell.
class Spaces {
 public:
  virtual ~Spaces() = default;
  /// Null: nobody is told, and nothing is watched. The client outlives its being set.
  virtual void setClient(SpacesClient* client) = 0;
};

}  // namespace platform::port
