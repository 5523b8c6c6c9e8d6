#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace simulated {

/// What the program asked of the desktop, in order, one line a call, over all services:
/// "statusItem.setImage logo-active-small", "audio.set 42 mute 1". What it printed stands between
/// them: "print Left click!".
class CallLog {
 public:
  void add(std::string entry) {
    if (witness) witness(entry);
    entries_.push_back(std::move(entry));
  }
  [[nodiscard]] const std::vector<std::string>& entries() const { return entries_; }
  /// Without what was printed; those of one service begin with `prefix`.
  [[nodiscard]] std::vector<std::string> calls(std::string_view prefix = "") const {
    std::vector<std::string> found;
    for (const std::string& entry : entries_) {
      if (entry.starts_with(prefix) && !entry.starts_with(kPrint)) found.push_back(entry);
    }
    return found;
  }
  void clear() { entries_.clear(); }

  static constexpr std::string_view kPrint = "print ";
  /// Sees the program as it is at the moment of each entry.
  std::function<void(const std::string& entry)> witness;

 private:
  std::vector<std::string> entries_;
};

}  // namespace simulated
