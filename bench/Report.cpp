#include "bench/Report.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace bench {

namespace {

std::string rounded(double value) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(value < 100 ? 2 : 0) << value;
  return text.str();
}

std::string spread(const std::vector<double>& values, const std::string& unit) {
  const auto [least, greatest] = std::ranges::minmax(values);
  return rounded(median(values)) + " " + unit + " (" + rounded(least) + "-" + rounded(greatest) +
         ")";
}

}  // namespace

double median(std::vector<double> values) {
  std::ranges::sort(values);
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 != 0 ? values.at(middle)
                                : (values.at(middle - 1) + values.at(middle)) / 2;
}

void Report::compare(const std::string& measure, const std::vector<double>& ours,
                     const std::vector<double>& floor, const std::string& unit,
                     const std::string& aim) {
  rows_.push_back({measure, spread(ours, unit), spread(floor, unit),
                   rounded(median(ours) / median(floor)), aim});
}

void Report::count(const std::string& measure, double ours, const std::string& unit,
                   const std::string& aim) {
  std::ostringstream figure;
  figure << ours << ' ' << unit;
  rows_.push_back({measure, figure.str(), "none", "", aim});
}

void Report::figure(const std::string& measure, const std::vector<double>& ours,
                    const std::string& unit) {
  if (ours.size() > 1) return rows_.push_back({measure, spread(ours, unit), "", "", ""});
  std::ostringstream figure;
  figure << std::setprecision(4) << ours.at(0) << ' ' << unit;
  rows_.push_back({measure, figure.str(), "", "", ""});
}

std::string Report::text() const {
  std::vector<std::vector<std::string>> lines{{"measure", "ours", "floor", "ratio", "aim"}};
  lines.insert(lines.end(), rows_.begin(), rows_.end());
  std::vector<std::size_t> widths(lines.front().size());
  for (const auto& line : lines)
    for (std::size_t i = 0; i < widths.size(); ++i)
      widths.at(i) = std::max(widths.at(i), line.at(i).size());
  lines.insert(lines.begin() + 1, std::vector<std::string>(widths.size()));
  for (std::size_t i = 0; i < widths.size(); ++i) lines.at(1).at(i).assign(widths.at(i), '-');
  std::ostringstream text;
  for (const auto& line : lines) {
    for (std::size_t i = 0; i < widths.size(); ++i)
      text << "| " << std::left << std::setw(static_cast<int>(widths.at(i))) << line.at(i) << ' ';
    text << "|\n";
  }
  return text.str();
}

}  // namespace bench
