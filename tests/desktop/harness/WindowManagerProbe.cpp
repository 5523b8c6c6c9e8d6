#include "desktop/harness/WindowManagerProbe.h"

#include <algorithm>

#include "desktop/harness/Process.h"

namespace harness {

namespace {

using namespace std::chrono_literals;

class ProbeWindow {
 public:
  explicit ProbeWindow(const XConnection& x) : x_(x), id_(xcb_generate_id(x.get())) {
    xcb_create_window(x.get(), XCB_COPY_FROM_PARENT, id_, x.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  }
  ~ProbeWindow() {
    xcb_destroy_window(x_.get(), id_);
    x_.waitUntil([this] { return !managed(); }, 5s);
  }
  ProbeWindow(const ProbeWindow&) = delete;
  ProbeWindow& operator=(const ProbeWindow&) = delete;

  void map() const { xcb_map_window(x_.get(), id_); }
  void unmap() const { xcb_unmap_window(x_.get(), id_); }
  [[nodiscard]] bool managed() const {
    const std::vector<std::uint32_t> clients = x_.numbers(x_.root(), "_NET_CLIENT_LIST");
    return std::find(clients.begin(), clients.end(), id_) != clients.end();
  }

 private:
  const XConnection& x_;
  xcb_window_t id_;
};

bool announced(const XConnection& x) {
  const auto check = x.number(x.root(), "_NET_SUPPORTING_WM_CHECK");
  return check && x.number(*check, "_NET_SUPPORTING_WM_CHECK") == check &&
         !x.numbers(x.root(), "_NET_SUPPORTED").empty();
}

}  // namespace

bool windowManagerTakesWindows(const XConnection& x) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  if (!x.waitUntil([&] { return announced(x); }, kPatience)) return false;
  const ProbeWindow probe(x);
  while (std::chrono::steady_clock::now() < deadline) {
    probe.map();
    if (x.waitUntil([&] { return probe.managed(); }, 500ms)) return true;
    probe.unmap();
  }
  return false;
}

}  // namespace harness
