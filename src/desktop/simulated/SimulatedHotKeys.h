#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "desktop/simulated/CallLog.h"
#include "platform/port/HotKeys.h"

namespace simulated {

/// A keyboard's combinations as a table of who holds them.
class SimulatedHotKeys final : public platform::port::HotKeys {
 public:
  /// The two numbers of the port: a virtual key code and a modifier mask.
  struct Combination {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;
    auto operator<=>(const Combination&) const = default;
  };

  explicit SimulatedHotKeys(CallLog& log) : log_(log) {}

  void setClient(platform::port::HotKeysClient* client) override { client_ = client; }
  [[nodiscard]] platform::OSStatus registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode, std::uint32_t modifiers,
                                                  const std::string& purpose) override;
  void unregisterHotKey(platform::port::HotKeyNumber number) override;
  [[nodiscard]] bool isReserved(std::uint32_t keyCode, std::uint32_t modifiers) const override {
    return reserved.contains({keyCode, modifiers});
  }

  // --- Levers ---
  /// What other programs hold.
  std::set<Combination> heldByOthers;
  /// What this keyboard cannot make.
  std::set<Combination> impossible;
  /// What this desktop gives to nobody.
  std::set<Combination> reserved;
  /// The desktop assigns the keys itself: what is asked for is held once it has been assigned.
  bool assignsKeys = false;
  /// What each combination was last asked for.
  std::map<Combination, std::string> purposes;
  /// Of what was asked for, gives `given`, by its name, now or once more; or nothing.
  void assign(Combination asked, Combination given, const std::string& name);
  void refuse(Combination asked);
  /// The user presses a combination, and lets go of it. Nothing happens when nobody holds it, or
  /// held it when it was pressed.
  void press(Combination combination);
  void release(Combination combination);
  /// What this program holds.
  [[nodiscard]] std::set<Combination> held() const;
  [[nodiscard]] bool hasClient() const { return client_ != nullptr; }

 private:
  using Numbers = std::map<platform::port::HotKeyNumber, Combination>;
  /// 0 when it is not among them.
  [[nodiscard]] static platform::port::HotKeyNumber numberOf(const Numbers& numbers,
                                                             Combination combination);
  void forget(platform::port::HotKeyNumber number);

  CallLog& log_;
  platform::port::HotKeysClient* client_ = nullptr;
  Numbers asked_;
  Numbers held_;
  std::set<platform::port::HotKeyNumber> down_;
};

}  // namespace simulated
