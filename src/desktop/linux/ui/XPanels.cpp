#include "desktop/linux/ui/XPanels.h"

#include <algorithm>
#include <array>

namespace linux_desktop {
namespace {

/// EWMH 1.5, _NET_WM_STRUT_PARTIAL: the four widths, then where along its edge each begins and
/// ends.
enum Strut { Left, Right, Top, Bottom, Widths };
constexpr std::size_t kPartialItems = 12;

/// The strip that a strut speaks of, on a root window of size `root`.
QRect stripOf(std::vector<std::uint32_t> strut, QSize root) {
  if (strut.size() < Widths) return {};
  if (strut.size() < kPartialItems) {
    const auto w = static_cast<std::uint32_t>(root.width());
    const auto h = static_cast<std::uint32_t>(root.height());
    strut.resize(Widths);
    strut.insert(strut.end(), {0, h - 1, 0, h - 1, 0, w - 1, 0, w - 1});
  }
  const auto at = [&strut](std::size_t index) { return static_cast<int>(strut[index]); };
  for (const std::size_t side : {Left, Right, Top, Bottom}) {
    if (at(side) == 0) continue;
    const int begin = at(Widths + 2 * side);
    const int length = at(Widths + 2 * side + 1) - begin + 1;
    const std::array<QRect, Widths> strips{
        QRect(0, begin, at(side), length), QRect(root.width() - at(side), begin, at(side), length),
        QRect(begin, 0, length, at(side)),
        QRect(begin, root.height() - at(side), length, at(side))};
    return strips[side];
  }
  return {};
}

}  // namespace

std::vector<DesktopPanel> panelsOn(XServer& server) {
  const auto root = server.geometry(server.root());
  if (!root) return {};
  const std::vector<xcb_window_t> windows = server.numbers(server.root(), "_NET_CLIENT_LIST");
  const auto types = server.numbersOf(windows, "_NET_WM_WINDOW_TYPE");
  const auto partial = server.numbersOf(windows, "_NET_WM_STRUT_PARTIAL");
  const auto whole = server.numbersOf(windows, "_NET_WM_STRUT");
  const xcb_atom_t dock = server.atom("_NET_WM_WINDOW_TYPE_DOCK");
  std::vector<DesktopPanel> panels;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const QRect strip = stripOf(partial[i].empty() ? whole[i] : partial[i], root->size());
    if (strip.isEmpty() && std::ranges::find(types[i], dock) == types[i].end()) continue;
    if (const auto geometry = server.geometry(windows[i])) panels.push_back({*geometry, strip});
  }
  return panels;
}

}  // namespace linux_desktop
