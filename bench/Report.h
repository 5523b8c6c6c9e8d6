#pragma once

#include <string>
#include <vector>

namespace bench {

/// The middle value; of an even number the mean of the middle two. Not for an empty list.
[[nodiscard]] double median(std::vector<double> values);

/// The table of all measures. Whoever reads it judges; this only prints.
class Report {
 public:
  /// Two figures in the same unit, measured in turns.
  void compare(const std::string& measure, const std::vector<double>& ours,
               const std::vector<double>& floor, const std::string& unit, const std::string& aim);
  /// A figure whose floor is none at all.
  void count(const std::string& measure, double ours, const std::string& unit,
             const std::string& aim);

  /// Figures that nothing is compared with.
  void figure(const std::string& measure, const std::vector<double>& ours, const std::string& unit);

  /// measure | ours | floor | ratio | aim; a comparison shows medians, and the least and the
  /// greatest in parentheses.
  [[nodiscard]] std::string text() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace bench
