#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace platform::port {

/// What a desktop may be unable to do although programs ask it to.
enum class Capability : std::uint8_t {
  CoverIcons,
  DoNotDisturb,
  HideApplications,
  MuteSpeaker,
  SetPictures
};

class AvailabilityClient {
 public:
  virtual ~AvailabilityClient() = default;
  /// Something has become possible or impossible, or is impossible for another reason now.
  virtual void availabilityDidChange() = 0;
};

/// What cannot be done here, told before anybody tries. The services may be asked for it all the
/// same. Absent: nothing is known to be impossible. Main thread only.
class Availability {
 public:
  virtual ~Availability() = default;
  /// Null: nobody is told. The client outlives its being set.
  virtual void setClient(AvailabilityClient* client) = 0;
  /// Why it cannot be done at present, in the user's language, to be read after "Not on this
  /// desktop:"; none where it can, and as long as that is not known. Takes half a second at most.
  [[nodiscard]] virtual std::optional<std::string> obstacle(Capability capability) = 0;
};

}  // namespace platform::port
