#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace harness {

/// A rectangle in device pixels; x to the right and y downwards from the top left of the X screen.
struct Rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  [[nodiscard]] int right() const { return x + width; }
  [[nodiscard]] int bottom() const { return y + height; }
  [[nodiscard]] int centreX() const { return x + width / 2; }
  [[nodiscard]] int centreY() const { return y + height / 2; }
  [[nodiscard]] bool empty() const { return width <= 0 || height <= 0; }
  [[nodiscard]] bool contains(int px, int py) const {
    return px >= x && px < right() && py >= y && py < bottom();
  }
  [[nodiscard]] bool contains(const Rect& other) const {
    return other.x >= x && other.y >= y && other.right() <= right() && other.bottom() <= bottom();
  }
  [[nodiscard]] bool intersects(const Rect& other) const {
    return other.x < right() && x < other.right() && other.y < bottom() && y < other.bottom();
  }
  bool operator==(const Rect&) const = default;
};

/// What a window says of itself. It stands where it asks to, as by the user's choice.
struct XWindow {
  std::string name = {};
  std::string className = "Foreign";
  std::string type = {};   // as "DIALOG"; empty: none
  std::string state = {};  // as "SKIP_TASKBAR"; empty: none
  xcb_window_t transientFor = XCB_NONE;
  std::string gtkApplicationId = {};
  Rect area{100, 100, 200, 150};
  /// None: one sees through it, where there is a compositor.
  std::optional<std::uint32_t> colour = 0;
};

/// What xcb hands out is freed with free().
struct FreeReply {
  void operator()(void* memory) const { std::free(memory); }
};
template <class Reply>
using XReply = std::unique_ptr<Reply, FreeReply>;

/// A connection of the test's own to an X server, as any foreign client has it. One thread.
class XConnection {
 public:
  /// Throws std::runtime_error when the server cannot be reached.
  explicit XConnection(const std::string& display);
  ~XConnection();
  XConnection(const XConnection&) = delete;
  XConnection& operator=(const XConnection&) = delete;

  [[nodiscard]] xcb_connection_t* get() const { return connection_; }
  [[nodiscard]] xcb_window_t root() const { return root_; }
  [[nodiscard]] Rect screenArea() const;
  [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
  [[nodiscard]] std::string atomName(xcb_atom_t atom) const;

  /// A property of 32-bit items; empty when it is absent or the window is gone.
  [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window,
                                                   std::string_view property) const;
  [[nodiscard]] std::optional<std::uint32_t> number(xcb_window_t window,
                                                    std::string_view property) const;
  /// A property of bytes, with the null bytes inside it.
  [[nodiscard]] std::string text(xcb_window_t window, std::string_view property) const;

  /// Opens a window that lasts as long as the connection; it need not be on the screen yet.
  [[nodiscard]] xcb_window_t open(const XWindow& window) const;

  [[nodiscard]] bool hasOwner(std::string_view selection) const;

  /// Sends a client message about `window` to the root, as a pager does.
  void askWindowManager(xcb_window_t window, std::string_view message,
                        const std::vector<std::uint32_t>& data) const;
  /// What window managers do on a click on the close button; not every desk has one.
  void askToClose(xcb_window_t window) const;

 private:
  void send(xcb_window_t to, std::uint32_t mask, xcb_window_t window, std::string_view message,
            const std::vector<std::uint32_t>& data) const;
  void create(xcb_window_t id, const XWindow& window) const;
  [[nodiscard]] XReply<xcb_get_property_reply_t> property(xcb_window_t window,
                                                          std::string_view name) const;

  xcb_connection_t* connection_;
  xcb_window_t root_ = XCB_NONE;
  mutable std::map<std::string, xcb_atom_t, std::less<>> atoms_;
};

}  // namespace harness
