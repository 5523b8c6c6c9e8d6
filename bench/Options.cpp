#include "bench/Options.h"

#include <charconv>
#include <span>
#include <stdexcept>
#include <string_view>

namespace bench {

namespace {

constexpr const char* kUsage =
    "usage: calmdeck-bench [--starts N] [--switches N] [--idle SECONDS] [--clicks N]\n"
    "                      [--toggles N] [--icons N] [--panel xfce4-panel|tint2]";

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

}  // namespace

Options optionsOf(int argc, char** argv) {
  Options options;
  const std::span<char*> words(argv + 1, static_cast<std::size_t>(argc - 1));
  if (words.size() % 2 != 0) throw std::runtime_error(kUsage);
  for (std::size_t i = 0; i < words.size(); i += 2) {
    const std::string_view name = words[i];
    const std::string_view value = words[i + 1];
    if (name == "--starts") {
      options.starts = number(value);
    } else if (name == "--switches") {
      options.switches = number(value);
    } else if (name == "--idle") {
      options.idle = std::chrono::seconds(number(value));
    } else if (name == "--clicks") {
      options.clicks = number(value);
    } else if (name == "--toggles") {
      options.toggles = number(value);
    } else if (name == "--icons") {
      options.icons = number(value);
    } else if (name == "--panel") {
      options.panel = panel(value);
    } else {
      throw std::runtime_error(kUsage);
    }
  }
  return options;
}

}  // namespace bench
