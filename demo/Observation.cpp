#include "demo/Observation.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <utility>

namespace demo {

namespace {

constexpr const char* kFine = "changed and returned";

std::string padded(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(width, text.size()), ' ');
}

}  // namespace

ObservationTable::ObservationTable(std::vector<Observation> observations) {
  for (Observation& each : observations) rows_.push_back({std::move(each), {}, {}, {}});
}

void ObservationTable::readBefore() {
  for (Row& row : rows_) row.before = row.observation.read();
}

void ObservationTable::readOn(const std::function<bool(const std::function<bool()>&)>& until) {
  for (Row& row : rows_) {
    until([&] { return (row.on = row.observation.read()) != row.before; });
  }
}

void ObservationTable::readOff(const std::function<bool(const std::function<bool()>&)>& until) {
  for (Row& row : rows_) {
    until([&] { return (row.off = row.observation.read()) == row.before; });
  }
}

std::string ObservationTable::verdict(const Row& row) {
  if (row.on == row.before) return "DID NOT CHANGE";
  if (row.off != row.before) return "DID NOT RETURN";
  return kFine;
}

std::string ObservationTable::text() const {
  std::vector<std::array<std::string, 5>> lines{{"", "before", "on", "off", ""}};
  for (const Row& row : rows_)
    lines.push_back({row.observation.name, row.before, row.on, row.off, verdict(row)});
  std::array<std::size_t, 5> widths{};
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < widths.size(); ++i)
      widths.at(i) = std::max(widths.at(i), line.at(i).size());
  }
  std::ostringstream text;
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < widths.size(); ++i) text << padded(line.at(i), widths.at(i) + 2);
    text << '\n';
  }
  return text.str();
}

bool ObservationTable::allChangedAndReturned() const {
  return std::ranges::all_of(rows_, [](const Row& row) { return verdict(row) == kFine; });
}

}  // namespace demo
