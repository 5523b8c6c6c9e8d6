#include "desktop/harness/WaylandClient.h"

#include <xdg-output-unstable-v1-client-protocol.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace harness {

struct WaylandClient::Output {
  Output(wl_registry* registry, std::uint32_t name)
      : output(static_cast<wl_output*>(wl_registry_bind(registry, name, &wl_output_interface, 1))) {
  }
  ~Output() {
    if (logical != nullptr) zxdg_output_v1_destroy(logical);
    wl_output_destroy(output);
  }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  /// Does nothing the second time.
  void ask(zxdg_output_manager_v1* manager);

  wl_output* output;
  zxdg_output_v1* logical = nullptr;
  WaylandOutput told = {};
};

struct WaylandClient::Listeners {
  static const wl_registry_listener kRegistry;
  static const zxdg_output_v1_listener kOutput;
};

const zxdg_output_v1_listener WaylandClient::Listeners::kOutput = {
    .logical_position =
        [](void* output, zxdg_output_v1*, std::int32_t x, std::int32_t y) {
          static_cast<Output*>(output)->told.area.x = x;
          static_cast<Output*>(output)->told.area.y = y;
        },
    .logical_size =
        [](void* output, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
          static_cast<Output*>(output)->told.area.width = width;
          static_cast<Output*>(output)->told.area.height = height;
        },
    .done = [](void*, zxdg_output_v1*) {},
    .name = [](void* output, zxdg_output_v1*,
               const char* name) { static_cast<Output*>(output)->told.name = name; },
    .description = [](void*, zxdg_output_v1*, const char*) {},
};

const wl_registry_listener WaylandClient::Listeners::kRegistry = {
    .global =
        [](void* client, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t) {
          static_cast<WaylandClient*>(client)->addGlobal(name, interface);
        },
    .global_remove =
        [](void* client, wl_registry*, std::uint32_t name) {
          static_cast<WaylandClient*>(client)->outputs_.erase(name);
        },
};

void WaylandClient::Output::ask(zxdg_output_manager_v1* manager) {
  if (logical != nullptr || manager == nullptr) return;
  logical = zxdg_output_manager_v1_get_xdg_output(manager, output);
  zxdg_output_v1_add_listener(logical, &Listeners::kOutput, this);
}

void WaylandClient::Free::operator()(zxdg_output_manager_v1* manager) const {
  zxdg_output_manager_v1_destroy(manager);
}

WaylandClient::WaylandClient(const std::string& socket)
    : display_(wl_display_connect(socket.c_str())) {
  if (!display_) throw std::runtime_error("no compositor at " + socket);
  registry_.reset(wl_display_get_registry(display_.get()));
  wl_registry_add_listener(registry_.get(), &Listeners::kRegistry, this);
  sync();
  seat_.reset(bind<wl_seat>(wl_seat_interface));
  outputManager_.reset(bind<zxdg_output_manager_v1>(zxdg_output_manager_v1_interface));
}

WaylandClient::~WaylandClient() = default;

void WaylandClient::sync() {
  if (wl_display_roundtrip(display_.get()) < 0)
    throw std::runtime_error("the compositor has hung up");
}

void WaylandClient::addGlobal(std::uint32_t name, const std::string& interface) {
  globals_.emplace(interface, name);
  if (interface == wl_output_interface.name)
    outputs_.emplace(name, std::make_unique<Output>(registry_.get(), name));
}

void* WaylandClient::bindGlobal(const wl_interface& interface) {
  const auto found = globals_.find(std::string_view(interface.name));
  if (found == globals_.end()) return nullptr;
  // What is used here has been there since the first versions; a monitor's name since the second.
  const std::uint32_t version = &interface == &zxdg_output_manager_v1_interface ? 2 : 1;
  return wl_registry_bind(registry_.get(), found->second, &interface, version);
}

std::vector<WaylandOutput> WaylandClient::outputs() {
  sync();
  for (const auto& [name, output] : outputs_) output->ask(outputManager_.get());
  sync();
  std::vector<WaylandOutput> result;
  for (const auto& [name, output] : outputs_) {
    if (!output->told.area.empty()) result.push_back(output->told);
  }
  std::ranges::sort(result, {}, [](const WaylandOutput& output) { return output.area.x; });
  return result;
}

}  // namespace harness
