#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

struct ClientProperty {
  xcb_window_t window;
  xcb_atom_t name;
};

/// What a property holds; nothing where it is absent or its window is gone.
class ClientPropertyValue {
 public:
  explicit ClientPropertyValue(XReply<xcb_get_property_reply_t> reply) : reply_(std::move(reply)) {}

  /// The items of a property of 32-bit numbers.
  [[nodiscard]] std::span<const std::uint32_t> numbers() const;
  [[nodiscard]] std::optional<std::uint32_t> number() const;
  [[nodiscard]] bool contains(std::uint32_t item) const;
  /// The parts of a text, which null bytes divide.
  [[nodiscard]] std::vector<std::string> texts() const;
  [[nodiscard]] std::string text() const;

 private:
  XReply<xcb_get_property_reply_t> reply_;
};

/// The values in the order of the question, however many, in one round trip.
[[nodiscard]] std::vector<ClientPropertyValue> askFor(XServer& server,
                                                      std::span<const ClientProperty> properties);

}  // namespace linux_desktop
