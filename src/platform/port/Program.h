#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Value.h"

namespace platform {

using Duration = std::chrono::nanoseconds;
/// A point on the desktop's own monotonic clock. Only differences mean something.
using MonotonicTime = std::chrono::time_point<std::chrono::steady_clock, Duration>;
/// A point in civil time, UTC.
using WallTime = std::chrono::system_clock::time_point;

}  // namespace platform

namespace platform::port {

/// The one loop of the process and its clocks. Everything but `post` is main thread only.
///
/// A desktop reports events (clicks, timers, changes of services) through the client interfaces and
/// callbacks of the port, on the main thread, at any time that one of `run` and `sleep` is on the
/// stack. It need not hold anything back while it sleeps: the layer keeps what arrives then in
/// order and acts on it afterwards (see NSRunLoop).
class MainLoop {
 public:
  using Work = std::function<void()>;

  /// A one-shot timer. Destroying it before it fired cancels it; then its work never runs. It may
  /// be destroyed from inside its work.
  class Timer {
   public:
    virtual ~Timer() = default;
  };

  virtual ~MainLoop() = default;

  /// Runs `work` once on the main thread, after the current event, in the order of posting; nested
  /// runs and sleeps work it off too. Never runs it inside `post`. May be called from any thread.
  virtual void post(Work work) = 0;

  /// Runs `fire` once on the main thread no earlier than `delay` from now. Timers due at the same
  /// time fire in the order in which they were started. Nothing wakes the process in between.
  [[nodiscard]] virtual std::unique_ptr<Timer> startTimer(Duration delay, Work fire) = 0;

  /// Handles events until `stop`. Nests: an inner run is a modal one.
  virtual void run() = 0;

  /// Ends the innermost `run` once the current event is done.
  virtual void stop() = 0;

  /// Ends every `run` and `sleep`, those of the future too: the program is ending.
  virtual void terminate() = 0;

  /// Blocks the caller for `duration`. Animations in flight keep moving on the screen and windows
  /// keep their places; see above for what arrives meanwhile. Returns early only after
  /// `terminate`.
  virtual void sleep(Duration duration) = 0;

  [[nodiscard]] virtual MonotonicTime now() const = 0;
  [[nodiscard]] virtual WallTime wallClock() const = 0;
};

/// Where the program's fixed lines go.
class StandardOutput {
 public:
  virtual ~StandardOutput() = default;
  /// Writes `text` and a line feed, at once, also into a pipe. A reader that is gone or a full disk
  /// is ignored: the lines are diagnostics.
  virtual void print(std::string_view text) = 0;
};

/// What the desktop session tells the application as a whole.
class SessionClient {
 public:
  virtual ~SessionClient() = default;
  /// The user started the program again while it runs: show something.
  virtual void applicationShouldReopen() = 0;
  /// The user asks for one of the program's actions from outside of it, by a key that he has bound
  /// himself, say, or a script. False: the program has none of that name.
  virtual bool applicationShouldPerform(std::string_view action) = 0;
};

class Session {
 public:
  virtual ~Session() = default;
  /// `client` is told from now on; null: nobody is. The client must outlive its being set.
  virtual void setClient(SessionClient* client) = 0;
  /// The application's mode went on or off, which other programs of the session may see. Off until
  /// told.
  virtual void modeDidChange(bool isOn) = 0;
};

/// The version of the running system, as far as programs choose their ways by it.
struct SystemVersion {
  int major = 0;
  int minor = 0;
  int patch = 0;
  auto operator<=>(const SystemVersion&) const = default;
};

/// The settings of other programs, for the current user on this host. Absent where programs do not
/// reach into each other's settings so.
class ForeignPreferences {
 public:
  virtual ~ForeignPreferences() = default;
  /// None removes the entry. Lasts only once it is synchronized.
  virtual void set(std::string_view key, std::optional<Value> value,
                   std::string_view application) = 0;
  /// False when it could not be stored.
  virtual bool synchronize(std::string_view application) = 0;
};

/// Messages to every program of the session that listens. Absent where there are none.
class DistributedNotifications {
 public:
  virtual ~DistributedNotifications() = default;
  virtual void post(std::string_view name) = 0;
};

/// One entry of the list of programs that the desktop starts at login. A handle: the entry may be
/// gone when it is used. Equal when it is the same entry.
struct LoginItem {
  std::string identifier;
  bool operator==(const LoginItem&) const = default;
};

/// The programs that the desktop starts at login. Main thread only; may touch the file system.
class LoginItems {
 public:
  virtual ~LoginItems() = default;

  /// The entries in the order of the list, oldest first; none when the list cannot be had. An entry
  /// that is there and switched off counts.
  [[nodiscard]] virtual std::optional<std::vector<LoginItem>> items() = 0;
  /// The absolute path of the program that the entry starts; none when it cannot be told.
  [[nodiscard]] virtual std::optional<std::string> resolve(const LoginItem& item) = 0;
  /// Adds an entry for the program at this absolute path after `after`, or in front of all where
  /// that is none. A desktop whose list has an order of its own puts it last. None when the entry
  /// cannot be made, after one clear line.
  [[nodiscard]] virtual std::optional<LoginItem> insert(std::string_view path,
                                                        const std::optional<LoginItem>& after) = 0;
  /// False when it is not there or cannot be removed.
  virtual bool remove(const LoginItem& item) = 0;
};

/// Looks for newer versions of the program. Absent where nothing can be asked.
class UpdateService {
 public:
  virtual ~UpdateService() = default;
  /// Speaks only when there is a newer version. Returns at once.
  virtual void checkInBackground() = 0;
  /// Answers the user in any case. Returns at once.
  virtual void checkForUpdates() = 0;
};

/// The settings of the application, kept between runs by the desktop. Main thread only.
/// Settings are Bools, integers, strings and arrays of these, and come back as what they were
/// stored as; anything else is a programming error.
class DefaultsStore {
 public:
  virtual ~DefaultsStore() = default;

  [[nodiscard]] virtual std::optional<Value> object(std::string_view key) const = 0;

  /// The new value is seen by `object` at once, and by the next run of the program however this one
  /// is ended, unless it is killed. `set` does not wait for the disk. Where the value cannot be
  /// stored for good (no space, no permission) the desktop says so on standard error and keeps it
  /// for this run.
  virtual void set(std::string_view key, Value value) = 0;
  virtual void remove(std::string_view key) = 0;
};

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

/// What the program says, in the user's language. Absent: all of it stays as it is written.
class Texts {
 public:
  virtual ~Texts() = default;
  /// `text` itself where it is known in no other language that the user reads.
  [[nodiscard]] virtual std::string localized(std::string_view text) const = 0;
};

}  // namespace platform::port
