#pragma once

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "desktop/simulated/CallLog.h"
#include "platform/port/Program.h"

namespace simulated {

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
