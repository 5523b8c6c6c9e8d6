#include "desktop/linux/x11/ClientProperties.h"

#include <algorithm>

namespace linux_desktop {
namespace {

/// In items of four bytes.
constexpr std::uint32_t kLongest = 1U << 16;

}  // namespace

std::span<const std::uint32_t> ClientPropertyValue::numbers() const {
  if (!reply_ || reply_->format != 32) return {};
  const auto* items = static_cast<const std::uint32_t*>(xcb_get_property_value(reply_.get()));
  return {items, static_cast<std::size_t>(xcb_get_property_value_length(reply_.get())) / 4};
}

std::optional<std::uint32_t> ClientPropertyValue::number() const {
  const auto items = numbers();
  return items.empty() ? std::nullopt : std::optional(items.front());
}

bool ClientPropertyValue::contains(std::uint32_t item) const {
  return std::ranges::find(numbers(), item) != numbers().end();
}

std::vector<std::string> ClientPropertyValue::texts() const {
  if (!reply_ || reply_->format != 8) return {};
  const std::string all(static_cast<const char*>(xcb_get_property_value(reply_.get())),
                        static_cast<std::size_t>(xcb_get_property_value_length(reply_.get())));
  std::vector<std::string> parts;
  for (std::size_t start = 0; start < all.size();) {
    const std::size_t end = std::min(all.find('\0', start), all.size());
    parts.push_back(all.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

std::string ClientPropertyValue::text() const {
  std::vector<std::string> parts = texts();
  return parts.empty() ? std::string() : std::move(parts.front());
}

std::vector<ClientPropertyValue> askFor(XServer& server,
                                        std::span<const ClientProperty> properties) {
  std::vector<xcb_get_property_cookie_t> cookies;
  cookies.reserve(properties.size());
  for (const auto& [window, name] : properties) {
    cookies.push_back(
        xcb_get_property(server.get(), 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, kLongest));
  }
  std::vector<ClientPropertyValue> values;
  values.reserve(properties.size());
  for (const auto& cookie : cookies) {
    xcb_generic_error_t* error = nullptr;
    values.emplace_back(
        XReply<xcb_get_property_reply_t>(xcb_get_property_reply(server.get(), cookie, &error)));
    const XReply<xcb_generic_error_t> gone(error);
  }
  return values;
}

}  // namespace linux_desktop
