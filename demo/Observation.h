#pragma once

#include <functional>
#include <string>
#include <vector>

namespace demo {

/// One thing that presentation mode changes, as a foreign client reads it.
struct Observation {
  std::string name;
  std::function<std::string()> read;
};

/// Follows the observations through the three states of a demonstration and keeps what it saw.
class ObservationTable {
 public:
  explicit ObservationTable(std::vector<Observation> observations);

  /// Reads every value as it is now.
  void readBefore();
  /// Reads every value once it differs from the one before; after a while, as it is.
  void readOn(const std::function<bool(const std::function<bool()>&)>& until);
  /// Reads every value once it is again the one before; after a while, as it is.
  void readOff(const std::function<bool(const std::function<bool()>&)>& until);

  /// The three values of each observation and a verdict, in columns.
  [[nodiscard]] std::string text() const;
  /// True when every value changed and returned.
  [[nodiscard]] bool allChangedAndReturned() const;

 private:
  struct Row {
    Observation observation;
    std::string before;
    std::string on;
    std::string off;
  };
  [[nodiscard]] static std::string verdict(const Row& row);

  std::vector<Row> rows_;
};

}  // namespace demo
