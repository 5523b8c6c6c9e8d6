#pragma once

#include <functional>

namespace platform {

/// The two queues that work is handed to. Main thread only.
///
/// Work on the main queue runs on the main thread, one item after another in the order of queuing,
/// each after the event that queued it has ended. The global queue (of default quality of service)
/// is served by the main thread too, between events: all that the application does there is hand
/// work on, and what it hands on arrives after everything that was already waiting.
class DispatchQueue {
 public:
  using Work = std::function<void()>;

  [[nodiscard]] static DispatchQueue mainQueue() { return DispatchQueue(Kind::Main); }
  [[nodiscard]] static DispatchQueue globalQueue() { return DispatchQueue(Kind::Global); }

  /// Returns at once.
  void async(Work work) const;
  /// Returns when `work` is done. On the main queue that is a programming error: it would wait for
  /// itself.
  void sync(const Work& work) const;

 private:
  enum class Kind { Main, Global };
  explicit DispatchQueue(Kind kind) : kind_(kind) {}

  Kind kind_;
};

}  // namespace platform
