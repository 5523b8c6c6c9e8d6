#pragma once

#include <algorithm>
#include <iterator>
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

/// The programs that start at login, as a list of paths.
class SimulatedLoginItems final : public platform::port::LoginItems {
 public:
  using Item = platform::port::LoginItem;
  struct Entry {
    std::string identifier;
    /// None: it cannot be told what the entry starts.
    std::optional<std::string> path;
  };

  explicit SimulatedLoginItems(CallLog& log) : log_(log) {}

  [[nodiscard]] std::optional<std::vector<Item>> items() override {
    if (!canBeRead) return std::nullopt;
    std::vector<Item> items;
    for (const Entry& entry : list) items.push_back({entry.identifier});
    return items;
  }
  [[nodiscard]] std::optional<std::string> resolve(const Item& item) override {
    const auto found = find(item);
    return found == list.end() ? std::nullopt : found->path;
  }
  [[nodiscard]] std::optional<Item> insert(std::string_view path,
                                           const std::optional<Item>& after) override {
    log_.add("loginItems.insert " + std::string(path));
    if (!canBeChanged) return std::nullopt;
    const auto found = after ? find(*after) : list.end();
    const auto place = after && found != list.end() ? std::next(found) : list.begin();
    return Item{list.insert(place, makeEntry(std::string(path)))->identifier};
  }
  bool remove(const Item& item) override {
    log_.add("loginItems.remove " + item.identifier);
    const auto found = find(item);
    if (!canBeChanged || found == list.end()) return false;
    list.erase(found);
    return true;
  }

  /// Another program appends an entry.
  void add(std::optional<std::string> path) { list.push_back(makeEntry(std::move(path))); }
  /// What the entries start, in order; "" where that cannot be told.
  [[nodiscard]] std::vector<std::string> paths() const {
    std::vector<std::string> paths;
    for (const Entry& entry : list) paths.push_back(entry.path.value_or(""));
    return paths;
  }

  std::vector<Entry> list;
  // Levers.
  bool canBeRead = true;
  bool canBeChanged = true;

 private:
  [[nodiscard]] std::vector<Entry>::iterator find(const Item& item) {
    return std::ranges::find(list, item.identifier, &Entry::identifier);
  }
  [[nodiscard]] Entry makeEntry(std::optional<std::string> path) {
    return {"item-" + std::to_string(++lastNumber_), std::move(path)};
  }

  CallLog& log_;
  int lastNumber_ = 0;
};

}  // namespace simulated
