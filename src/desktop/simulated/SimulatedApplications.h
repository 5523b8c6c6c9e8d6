#pragma once

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "desktop/simulated/CallLog.h"
#include "platform/port/Program.h"
#include "platform/port/RunningApplications.h"

namespace simulated {

/// Running applications as a list, and the set of those that are hidden.
class SimulatedApplications final : public platform::port::RunningApplications {
 public:
  using Id = platform::port::ApplicationId;

  explicit SimulatedApplications(CallLog& log) : log_(log) {}

  [[nodiscard]] std::vector<platform::port::ApplicationInfo> runningApplications() override {
    return list;
  }
  [[nodiscard]] bool isHidden(Id application) override { return hidden.contains(application); }
  bool hide(Id application) override {
    log_.add("applications.hide " + std::to_string(application));
    if (!runs(application)) return false;
    hidden.insert(application);
    return true;
  }
  bool unhide(Id application) override {
    log_.add("applications.unhide " + std::to_string(application));
    hidden.erase(application);
    return runs(application);
  }

  std::vector<platform::port::ApplicationInfo> list;
  std::set<Id> hidden;

 private:
  [[nodiscard]] bool runs(Id application) const {
    return std::ranges::find(list, application, &platform::port::ApplicationInfo::id) != list.end();
  }

  CallLog& log_;
};

class SimulatedForeignPreferences final : public platform::port::ForeignPreferences {
 public:
  explicit SimulatedForeignPreferences(CallLog& log) : log_(log) {}

  void set(std::string_view key, std::optional<platform::Value> value,
           std::string_view application) override {
    log_.add((value ? "preferences.set " : "preferences.remove ") + std::string(application) + " " +
             std::string(key));
    values.erase(std::string(key));
    if (value) values.emplace(key, *value);
  }
  bool synchronize(std::string_view application) override {
    log_.add("preferences.synchronize " + std::string(application));
    if (synchronizes) stored = values;
    return synchronizes;
  }

  /// As they were set, and as of the last synchronizing that worked.
  platform::Dictionary values;
  platform::Dictionary stored;
  bool synchronizes = true;

 private:
  CallLog& log_;
};

class SimulatedDistributedNotifications final : public platform::port::DistributedNotifications {
 public:
  explicit SimulatedDistributedNotifications(CallLog& log) : log_(log) {}
  void post(std::string_view name) override {
    log_.add("distributedNotifications.post " + std::string(name));
  }

 private:
  CallLog& log_;
};

}  // namespace simulated
