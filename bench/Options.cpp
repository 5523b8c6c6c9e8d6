#include "bench/Options.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string_view>

namespace bench {

namespace {

constexpr const char* kUsage =
    "usage: calmdeck-bench [--starts N] [--switches N] [--idle SECONDS] [--clicks N]\n"
    "                      [--toggles N] [--icons N] [--shortcuts N] [--modes N]\n"
    "                      [--windows N] [--compositors N] [--panel xfce4-panel|tint2]";

int number(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || value < 0)
    throw std::runtime_error(kUsage);
  return value;
}

harness::Panel panel(std::string_view name) {
  for (const harness::Panel kind : {harness::Panel::XfcePanel, harness::Panel::Tint2})
    if (harness::program(kind).name == name) return kind;
  throw std::runtime_error(kUsage);
}

struct Setter {
  std::string_view name;
  void (*set)(Options& options, std::string_view value);
};

template <int Options::*count>
void setCount(Options& options, std::string_view value) {
  options.*count = number(value);
}

constexpr Setter kSetters[] = {
    {"--starts", setCount<&Options::starts>},
    {"--switches", setCount<&Options::switches>},
    {"--clicks", setCount<&Options::clicks>},
    {"--toggles", setCount<&Options::toggles>},
    {"--icons", setCount<&Options::icons>},
    {"--shortcuts", setCount<&Options::shortcuts>},
    {"--modes", setCount<&Options::modes>},
    {"--compositors", setCount<&Options::compositors>},
    {"--windows",
     [](Options& options, std::string_view value) { options.windows = {number(value)}; }},
    {"--idle", [](Options& options,
                  std::string_view value) { options.idle = std::chrono::seconds(number(value)); }},
    {"--panel", [](Options& options, std::string_view value) { options.panel = panel(value); }},
};

}  // namespace

Options optionsOf(int argc, char** argv) {
  Options options;
  const std::span<char*> words(argv + 1, static_cast<std::size_t>(argc - 1));
  if (words.size() % 2 != 0) throw std::runtime_error(kUsage);
  for (std::size_t i = 0; i < words.size(); i += 2) {
    const std::string_view name = words[i];
    const auto found = std::ranges::find(kSetters, name, &Setter::name);
    if (found == std::end(kSetters)) throw std::runtime_error(kUsage);
    found->set(options, words[i + 1]);
  }
  return options;
}

}  // namespace bench
