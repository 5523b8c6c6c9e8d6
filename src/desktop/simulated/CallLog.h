#pragma once

#include <string>
#include <vector>

namespace simulated {

/// What the program asked of the desktop, in order, one line a call, over all services:
/// "statusItem.setImage logo-active-small", "audio.set 42 mute 1".
class CallLog {
 public:
  void add(std::string call) { calls_.push_back(std::move(call)); }
  [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }
  /// Those of one service: the ones that begin with `prefix`.
  [[nodiscard]] std::vector<std::string> calls(std::string_view prefix) const {
    std::vector<std::string> found;
    for (const std::string& call : calls_) {
      if (call.starts_with(prefix)) found.push_back(call);
    }
    return found;
  }
  void clear() { calls_.clear(); }

 private:
  std::vector<std::string> calls_;
};

}  // namespace simulated
